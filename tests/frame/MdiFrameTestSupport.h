#pragma once
// What the MDI frame tests share: a profile in a fresh registry store, and an
// answerer for the message boxes that the frame shows.

#include "../utl/TempDir.h"
#include "TestApplication.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/platform/Registry.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <vector>

namespace korva::test {

/// An application object whose profile lives in a registry store of its own.
class MdiFrameFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Application();
        setenv("XDG_CONFIG_HOME", mDir.File("user").c_str(), 1);
        setenv("KORVA_REGISTRY_DIR", mDir.File("registry").c_str(), 1);
        std::filesystem::create_directories(mDir.File("registry"));
        RegistryStore::Reset();
        mApp = std::make_unique<WinApp>("MdiFrameTest");
        mApp->SetRegistryKey("Tessmark");
        TessmaMDIFrame::msFreeMemoryReader = nullptr;
        TessmaMDIFrame::msWorkAreaSource = nullptr;
        TessmaMDIFrame::SetWarnAboutMemory(true);
    }
    void TearDown() override
    {
        TessmaMDIFrame::msFreeMemoryReader = nullptr;
        TessmaMDIFrame::msWorkAreaSource = nullptr;
        mApp.reset();
        RegistryStore::Reset();
        unsetenv("KORVA_REGISTRY_DIR");
        unsetenv("XDG_CONFIG_HOME");
    }

    TempDir mDir;
    std::unique_ptr<WinApp> mApp;
};

/// The message of a box: the library's own (its text control) or a QMessageBox,
/// with the line breaks of its layout taken out.
inline QString BoxText(QWidget* box)
{
    QString text;
    if (auto* message = qobject_cast<QMessageBox*>(box))
        text = message->text();
    for (QLabel* label : box->findChildren<QLabel*>())
        if (label->property("ctrlId").toInt() == 13038)
            text = label->text();
    return text.simplified();
}

/// Answers every modal box that comes up with `key` and keeps its text.
/// `during` runs while a box is up, before it is answered.
class BoxAnswerer
{
public:
    explicit BoxAnswerer(Qt::Key key = Qt::Key_Return, std::function<void()> during = nullptr)
    {
        QObject::connect(&mTimer, &QTimer::timeout, [this, key, during] {
            QWidget* box = QApplication::activeModalWidget();
            if (!box || !box->isVisible())
                return;
            texts.push_back(BoxText(box));
            if (during)
                during();
            QTest::keyClick(box, key);
        });
        mTimer.start(20);
    }

    std::vector<QString> texts;

private:
    QTimer mTimer;
};

/// A frame whose timer handler the test may call, as the window system would.
class TimerFrame : public TessmaMDIFrame
{
public:
    using TessmaMDIFrame::OnTimer;
};

} // namespace korva::test
