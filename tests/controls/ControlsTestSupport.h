#pragma once
// A shown, active window with the control under test, a throwaway registry for the
// profile, and clicks on list cells.

#include "frame/TestApplication.h"

#include <KORVAutlwin/controls/TsListCtrl.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/platform/Registry.h>

#include <memory>

namespace korva::test {

class ControlsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Application();
        setenv("KORVA_REGISTRY_DIR", mDir.File("registry").c_str(), 1);
        std::filesystem::create_directories(mDir.File("registry"));
        RegistryStore::Reset();
        mApp = std::make_unique<WinApp>("ControlsTest");
        mApp->SetRegistryKey("Tessmark");
        mWindow = std::make_unique<QWidget>();
        mWindow->resize(420, 300);
    }
    void TearDown() override
    {
        mWindow.reset();
        mApp.reset();
        RegistryStore::Reset();
        unsetenv("KORVA_REGISTRY_DIR");
    }
    /// Shows `widget` filling the window, active, with the focus.
    void Show(QWidget* widget)
    {
        widget->setParent(mWindow.get());
        widget->setGeometry(0, 0, 420, 300);
        widget->show();
        mWindow->show();
        mWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(mWindow.get()));
        widget->setFocus();
    }
    /// A list of `rows` rows and three columns "r<row>c<col>".
    TsListCtrl* MakeList(int rows, QWidget* parent = nullptr)
    {
        auto* list = new TsListCtrl(parent ? parent : mWindow.get());
        for (int col = 0; col < 3; ++col)
            list->InsertColumn(col, ("Col" + std::to_string(col)).c_str(), LVCFMT_LEFT, 100);
        for (int row = 0; row < rows; ++row) {
            list->AddItem(("r" + std::to_string(row) + "c0").c_str(), static_cast<uintptr_t>(row));
            for (int col = 1; col < 3; ++col)
                list->SetItemText(row, col, ("r" + std::to_string(row) + "c" + std::to_string(col)).c_str());
        }
        return list;
    }
    /// The middle of a cell in viewport coordinates.
    static QPoint Cell(TsListCtrl* list, int row, int col)
    {
        QRect rect = list->GetItemRect(row);
        int left = rect.left();
        for (int c = 0; c < col; ++c)
            left += list->GetColumnWidth(c);
        return QPoint(left + list->GetColumnWidth(col) / 2, rect.center().y());
    }
    static std::vector<int> Selected(const TsListCtrl* list)
    {
        std::vector<int> rows;
        list->GetSelIndexes(rows);
        return rows;
    }

    TempDir mDir;
    std::unique_ptr<WinApp> mApp;
    std::unique_ptr<QWidget> mWindow;
};

} // namespace korva::test
