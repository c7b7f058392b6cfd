#pragma once
// A grid of every row kind in a window of its own, offscreen, for the grid's tests.

#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemCustomList.h>
#include <KORVAutlwin/options/PropertyItemFilePath.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemFolderPath.h>
#include <KORVAutlwin/options/PropertyItemListYesNo.h>
#include <KORVAutlwin/options/PropertyItemManager.h>
#include <KORVAutlwin/options/PropertyItemNegNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyInPlaceComboBox.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>

#include <QtTest>
#include <QtWidgets>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace korva::test {

inline QApplication* Application()
{
    if (auto* existing = qobject_cast<QApplication*>(QCoreApplication::instance()))
        return existing;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static int argc = 1;
    static char name[] = "options_tests";
    static char* argv[] = {name, nullptr};
    return new QApplication(argc, argv);
}

/// Calls `action` with the modal dialog as soon as one is up (for at most five
/// seconds, after which any dialog still up is rejected, so no test can hang).
inline void WhenModal(std::function<void(QDialog*)> action)
{
    auto* timer = new QTimer;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    QObject::connect(timer, &QTimer::timeout, [timer, action, deadline] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog && dialog->isVisible())
            action(dialog);
        else if (std::chrono::steady_clock::now() < deadline)
            return;
        timer->deleteLater();
        timer->stop();
    });
    timer->start(20);
}

/// Remembers every commit it is told of.
class RecordingManager : public PropertyItemManager
{
public:
    void OnDataChanged(PropertyItem* item, PropertyListCtrl* list, int index) override
    {
        changes.push_back({item, list, index});
    }
    void OnInitManager(unsigned long) override {}
    void OnManagerCommand(unsigned long) override {}

    struct Change
    {
        PropertyItem* item;
        PropertyListCtrl* list;
        int index;
    };
    std::vector<Change> changes;
};

/// Row ids of the grid below.
enum : unsigned int
{
    eName = 1,
    eCount,
    eOffset,
    eScale,
    eSave,
    eMethod,
    eColour,
    eFolder,
    eFile,
    eHidden
};

class GridFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Application();
        window = std::make_unique<QWidget>();
        window->resize(420, 460);
        grid = new PropertyListCtrl(window.get());
        grid->setGeometry(10, 10, 400, 300); // room below the grid for a drop-down
        PropertyItemCategory* general = manager.AddPropertyCategory("General", "Plain values", true);
        general->AddPropertyItem(new PropertyItemString("Name", eName, "The model's name"));
        general->AddPropertyItem(new PropertyItemNumber("Count", eCount, "Components"));
        general->AddPropertyItem(new PropertyItemNegNumber("Offset", eOffset, ""));
        general->AddPropertyItem(new PropertyItemFloat("Scale", eScale, ""));
        PropertyItemCategory* choices = manager.AddPropertyCategory("Choices", "", true);
        choices->AddPropertyItem(new PropertyItemListYesNo("Save", eSave, ""));
        method = new PropertyItemCustomList("Method", eMethod, "");
        choices->AddPropertyItem(method);
        choices->AddPropertyItem(new PropertyItemColorPopup("Colour", eColour, ""));
        PropertyItemCategory* files = manager.AddPropertyCategory("Files", "", true);
        files->AddPropertyItem(new PropertyItemFolderPath("Data folder", eFolder, ""));
        files->AddPropertyItem(new PropertyItemFilePath("Report file", eFile, ""));
        PropertyItemCategory* closed = manager.AddPropertyCategory("Advanced", "", false);
        closed->AddPropertyItem(new PropertyItemString("Hidden", eHidden, ""));
        grid->SetPropertyItemManager(&manager);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    void TearDown() override
    {
        window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// The row showing property `id`.
    int RowOf(unsigned int id) const
    {
        for (int row = 0; row < grid->GetCount(); ++row)
            if (grid->GetPropertyItem(row)->GetPropertyID() == id)
                return row;
        return -1;
    }

    /// Clicks the caption of row `row` at `x`.
    void ClickRow(int row, int x = 40)
    {
        const QRect rect = grid->GetItemRect(row);
        QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(x, rect.center().y()));
    }

    /// Selects the row of `id` by a click and types `text` over its value.
    QLineEdit* TypeInto(unsigned int id, const char* text)
    {
        ClickRow(RowOf(id));
        auto* edit = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        if (!edit)
            return nullptr;
        edit->selectAll();
        QTest::keyClicks(edit, text);
        return edit;
    }

    std::unique_ptr<QWidget> window;
    PropertyListCtrl* grid = nullptr; // owned by the window
    RecordingManager manager;
    PropertyItemCustomList* method = nullptr;
};

} // namespace korva::test
