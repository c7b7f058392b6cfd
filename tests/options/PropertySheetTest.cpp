// Sheets, pages and the options page driven by clicks and keys, offscreen.
#include "PropertyGridTestSupport.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/options/BasePropertyPageHelper.h>
#include <KORVAutlwin/options/TsModelessPropertySheet.h>
#include <KORVAutlwin/options/TsPropertiesHandler.h>
#include <KORVAutlwin/options/TsPropertySheet.h>
#include <KORVAutlwin/options/TsSubHandlerPropertyPage.h>
#include <KORVAutlwin/options/TsSubPropertyPage.h>
#include <KORVAutlwin/options/XMLOptionsPage.h>

#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <stdexcept>
#include <string>
#include <vector>

using korva::test::Application;
using korva::test::WhenModal;

namespace {

struct LoggingHelper : BasePropertyPageHelper
{
    std::vector<std::string>* log = nullptr;
    bool result = true;
    bool Update() override
    {
        log->push_back("update");
        return result && BasePropertyPageHelper::Update();
    }
};

// A page with one edit; typing into it changes the page.
struct EditPage : TsPropertyPage
{
    EditPage(const char* name, BasePropertyPageHelper* helper, std::vector<std::string>* log)
        : TsPropertyPage(100, 0, helper), name(name), log(log), edit(new QLineEdit(this))
    {
        SetPageTitle(name);
        new QVBoxLayout(this);
        layout()->addWidget(edit);
        connect(edit, &QLineEdit::textEdited, this, [this] { Changed(); });
    }
    bool OnApply() override
    {
        log->push_back(name);
        return TsPropertyPage::OnApply();
    }
    std::string name;
    std::vector<std::string>* log;
    QLineEdit* edit;
};

void Type(TsPropertySheet& sheet, EditPage& page, const char* text)
{
    QTest::mouseClick(sheet.GetTabControl()->tabBar(), Qt::LeftButton, {},
                      sheet.GetTabControl()->tabBar()->tabRect(sheet.GetPageIndex(&page)).center());
    QTest::keyClicks(page.edit, text);
}

} // namespace

TEST(TsPropertySheet, OkApplyAndCancelStoreEveryChangedPageAndTheLastOneUpdates)
{
    Application();
    struct Row
    {
        const char* name;
        bool editA, editB;
        unsigned int button;
        bool updateResult;
        std::vector<std::string> log;
        bool open;   // the sheet afterwards
        int counter; // the helper's afterwards
    };
    const Row rows[] = {
        {"two pages, OK", true, true, IDOK, true, {"A", "B", "update"}, false, 0},
        {"one page, Apply", false, true, TsPropertySheet::ID_APPLY_NOW, true, {"A", "B", "update"}, true, 0},
        {"a refused update keeps the sheet", true, true, IDOK, false, {"A", "B", "update"}, true, 1},
        {"Cancel forgets", true, false, IDCANCEL, true, {}, false, 0},
        {"nothing changed: pages never shown are left", false, false, IDOK, true, {"A"}, false, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> log;
        LoggingHelper helper;
        helper.log = &log;
        helper.result = row.updateResult;
        EditPage a("A", &helper, &log), b("B", &helper, &log);
        TsPropertySheet sheet("Sheet");
        sheet.AddPage(&a);
        sheet.AddPage(&b);
        sheet.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&sheet));
        EXPECT_FALSE(sheet.GetButton(TsPropertySheet::ID_APPLY_NOW)->isEnabled());
        if (row.editA)
            Type(sheet, a, "x");
        if (row.editB)
            Type(sheet, b, "yy");
        EXPECT_EQ(helper.Connected(), int(row.editA) + int(row.editB));
        EXPECT_EQ(sheet.GetButton(TsPropertySheet::ID_APPLY_NOW)->isEnabled(), row.editA || row.editB);
        QTest::mouseClick(sheet.GetButton(row.button), Qt::LeftButton);
        EXPECT_EQ(log, row.log);
        EXPECT_EQ(sheet.isVisible(), row.open);
        EXPECT_EQ(helper.Connected(), row.counter);
        EXPECT_EQ(sheet.IsChanged(), row.counter > 0);
        if (!row.open) {
            EXPECT_EQ(sheet.result(), int(row.button));
        }
    }
}

TEST(TsPropertySheet, WizardButtonsFollowTheFlagsAndPagesCheckTheirIndexAndHelp)
{
    Application();
    std::vector<std::string> log;
    EditPage a("A", nullptr, &log), b("B", nullptr, &log);
    TsPropertyPage helped(100, 0, nullptr, 4711);
    EXPECT_EQ(a.GetFlags() & TsPropertyPage::PSP_HASHELP, 0u);
    EXPECT_EQ(helped.GetFlags() & TsPropertyPage::PSP_HASHELP, TsPropertyPage::PSP_HASHELP);
    TsPropertySheet sheet("Wizard");
    sheet.AddPage(&a);
    sheet.AddPage(&b);
    EXPECT_THROW(sheet.GetPage(2), std::invalid_argument);
    EXPECT_THROW(sheet.GetPage(-1), std::invalid_argument);
    sheet.SetWizardMode();
    sheet.show();
    struct Row
    {
        unsigned long flags;
        bool back, next, finishShown, finish;
    };
    const Row rows[] = {{0, false, false, false, false}, {1 | 2, true, true, false, false},
                        {1 | 4, true, false, true, true}, {8, false, false, true, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.flags);
        sheet.SetWizardButtons(row.flags);
        EXPECT_TRUE(sheet.WizardButtonsRearranged());
        EXPECT_EQ(sheet.GetButton(TsPropertySheet::ID_WIZBACK)->isEnabled(), row.back);
        EXPECT_EQ(sheet.GetButton(TsPropertySheet::ID_WIZNEXT)->isEnabled(), row.next);
        EXPECT_EQ(sheet.GetButton(TsPropertySheet::ID_WIZFINISH)->isVisible(), row.finishShown);
        EXPECT_EQ(sheet.GetButton(TsPropertySheet::ID_WIZFINISH)->isEnabled(), row.finish);
    }
    sheet.SetWizardButtons(2);
    QTest::mouseClick(sheet.GetButton(TsPropertySheet::ID_WIZNEXT), Qt::LeftButton);
    EXPECT_EQ(sheet.GetActivePage(), &b);
    sheet.SetWizardButtons(1 | 4);
    QTest::keyClicks(b.edit, "z");
    QTest::mouseClick(sheet.GetButton(TsPropertySheet::ID_WIZFINISH), Qt::LeftButton);
    EXPECT_EQ(log, std::vector<std::string>{"B"});
    EXPECT_EQ(sheet.result(), int(TsPropertySheet::ID_WIZFINISH));
}

namespace {

struct Handler : TsPropertiesHandler
{
    std::vector<TsPropertyPage*> pages;
    TsPropertyPage* active = nullptr;
    BasePropertyPageHelper* helper = nullptr;
    void AddPages(TsModelessPropertySheet* sheet) override
    {
        for (TsPropertyPage* page : pages)
            sheet->AddRefCountedPage(page);
    }
    TsPropertyPage* GetActivePage(TsPropertyPage*) override { return active; }
    BasePropertyPageHelper* GetHelper() override { return helper; }
};

std::vector<TsPropertyPage*> Pages(TsPropertySheet& sheet)
{
    std::vector<TsPropertyPage*> pages;
    for (int index = 0; index < sheet.GetPageCount(); ++index)
        pages.push_back(sheet.GetPage(index));
    return pages;
}

} // namespace

TEST(TsModelessPropertySheet, PagesFollowTheHandlerAndSharedPagesStayInPlace)
{
    Application();
    std::vector<std::string> log;
    BasePropertyPageHelper helper;
    EditPage p1("1", &helper, &log), p2("2", &helper, &log), p3("3", &helper, &log);
    TsModelessPropertySheet* sheet = TsModelessPropertySheet::Instance();
    EXPECT_EQ(sheet, TsModelessPropertySheet::Instance());
    EXPECT_EQ(sheet->windowTitle(), "Properties");
    sheet->show();

    Handler first, second;
    first.pages = {&p1, &p2, &p1};
    first.helper = &helper;
    second.pages = {&p2, &p3};
    second.active = &p3;
    sheet->ChangePropertiesHandler(&first);
    EXPECT_EQ(Pages(*sheet), (std::vector<TsPropertyPage*>{&p1, &p2}));
    EXPECT_EQ(p1.CountRefs(), 2);
    EXPECT_EQ(sheet->GetHelper(), &helper);

    QTest::keyClicks(p1.edit, "changed");
    EXPECT_TRUE(p1.IsChanged());
    sheet->ChangePropertiesHandler(&second);
    EXPECT_FALSE(p1.IsChanged());
    // Page 1 had two references: one is released, so it stays, in front.
    EXPECT_EQ(Pages(*sheet), (std::vector<TsPropertyPage*>{&p1, &p2, &p3}));
    EXPECT_EQ(sheet->GetActivePage(), &p3);
    EXPECT_EQ(sheet->GetTabControl()->tabText(2), "3");
    EXPECT_EQ(p1.CountRefs(), 1);
    EXPECT_EQ(p2.CountRefs(), 1);

    // The helper's update rebuilds the pages for the present handler.
    EXPECT_TRUE(helper.Update());
    EXPECT_EQ(Pages(*sheet), (std::vector<TsPropertyPage*>{&p2, &p3}));

    sheet->ChangePropertiesHandler(nullptr);
    EXPECT_EQ(sheet->GetPageCount(), 0);
    EXPECT_EQ(p3.ReleaseRef(), 0);
    EXPECT_EQ(p3.ReleaseRef(), 0);
    sheet->hide();
}

TEST(TsSubHandlerPropertyPage, SubPagesFillThePlaceholderAndArmTheOuterPage)
{
    Application();
    struct Sub : TsSubPropertyPage
    {
        Sub() : TsSubPropertyPage(200, 0) {}
        int applied = 0;
        bool OnApply() override { return ++applied, true; }
    } sub;
    BasePropertyPageHelper helper;
    TsSubHandlerPropertyPage page(300, 100, 0, &helper);
    TsPropertySheet sheet("Sub");
    sheet.AddPage(&page);
    page.SetCurrentSubPage(&sub);
    sheet.resize(400, 300);
    sheet.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&sheet));
    EXPECT_EQ(sub.geometry(), page.GetPlaceholder()->rect());
    sub.Changed();
    EXPECT_TRUE(page.IsChanged());
    EXPECT_EQ(helper.Connected(), 1);
    QTest::mouseClick(sheet.GetButton(TsPropertySheet::ID_APPLY_NOW), Qt::LeftButton);
    EXPECT_EQ(sub.applied, 1);
    EXPECT_FALSE(page.IsChanged());
}

TEST(XMLOptionsPage, EditsValidateApplyStoresAndResetWaitsForApply)
{
    Application();
    XMLStringInputStream stream(
        "<Tessmark><PropertyCategory ShortDescription='Model'>"
        "<PropertyItem Section='Model' Key='Components' Type='Number' Default='3'>"
        "<Validator Type='Number' Min='1' Max='10'/></PropertyItem>"
        "<PropertyItem Section='Model' Key='Title' Type='String' Default='Scores'/>"
        "</PropertyCategory></Tessmark>");
    XMLSection description(&stream, false);
    XMLSection settings;
    XMLOptionsPage page("Options", &settings, &description, nullptr);
    TsPropertySheet sheet("Options");
    sheet.AddPage(&page);
    sheet.resize(500, 400);
    sheet.show();
    QApplication::setActiveWindow(&sheet);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    EXPECT_EQ(sheet.GetTabControl()->tabText(0), "Options");
    PropertyListCtrl* grid = page.GetPropertyList();
    ASSERT_EQ(grid->GetCount(), 3);
    auto* components = static_cast<PropertyItemNumber*>(grid->GetPropertyItem(1));

    struct Row
    {
        const char* typed;
        int value;
        const char* message; // "" none
    };
    const Row rows[] = {
        {"7", 7, ""},
        {"11", 3, "The value should be between 1 and 10. The value will be reset to default."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(40, grid->GetItemRect(1).center().y()));
        auto* edit = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        ASSERT_NE(edit, nullptr);
        edit->selectAll();
        QTest::keyClicks(edit, row.typed);
        std::string shown;
        WhenModal([&](QDialog* box) {
            for (QLabel* label : box->findChildren<QLabel*>())
                if (label->text().startsWith("The value"))
                    shown = label->text().toStdString();
            box->reject();
        });
        QTest::keyClick(edit, Qt::Key_Return);
        QTest::qWait(50);
        EXPECT_EQ(shown, row.message);
        int value = 0;
        components->GetData(value);
        EXPECT_EQ(value, row.value);
        EXPECT_TRUE(page.IsChanged());
        QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(40, grid->GetItemRect(0).center().y()));
    }
    components->SetData(8);
    QTest::mouseClick(sheet.GetButton(TsPropertySheet::ID_APPLY_NOW), Qt::LeftButton);
    EXPECT_FALSE(page.IsChanged());
    int stored = 0;
    std::unique_ptr<ConfigurationSection> model(settings.CopyAndChangeSubSection("Model"));
    ASSERT_TRUE(model && model->ReadInt("Components", stored));
    EXPECT_EQ(stored, 8);

    QTest::mouseClick(page.GetResetButton(), Qt::LeftButton);
    int value = 0;
    components->GetData(value);
    EXPECT_EQ(value, 3);
    EXPECT_TRUE(page.IsChanged());
    ASSERT_TRUE(model->ReadInt("Components", stored));
    EXPECT_EQ(stored, 8);

    const bool details = grid->GetShowDetails();
    QTest::mouseClick(page.GetShowDetailsBox(), Qt::LeftButton);
    EXPECT_EQ(grid->GetShowDetails(), !details);
    EXPECT_EQ(page.GetShowDetails(), details ? 0 : 1);
}
