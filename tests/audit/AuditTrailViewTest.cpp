// The audit trail's page, settings functions and view on a real browser,
// offscreen: the trail rendered through the browser's XSLT, the view following
// the trail's signals, F5 and "app:" rules, the view's menu, and the page's
// events around turning the trail off and on.

#include "workspace/html/BrowserTestSupport.h"
#include "utl/MemorySection.h"

#include <KORVAutlwin/audit/AuditTrailPage.h>
#include <KORVAutlwin/audit/AuditTrailSettingsUI.h>
#include <KORVAutlwin/audit/AuditTrailView.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/platform/RegistryStore.h>
#include <KORVAutlwin/platform/UserIdentity.h>

#include <KORVAutl/AuditTrail.h>

#include <QWebEngineView>

#include <sys/stat.h>

namespace {

using korva::test::Application;
using korva::test::Eval;
using korva::test::Until;
using korva::test::Control;
using korva::test::WhenModal;

class AuditTest : public ::testing::Test
{
protected:
    AuditTest()
    {
        Application();
        for (const char* name : {"KORVA_REGISTRY_DIR", "XDG_CONFIG_HOME", "KORVA_COMMON_APPDATA"})
            ::setenv(name, mDir.Path().c_str(), 1);
        korva::RegistryStore::Reset();
        mApp = std::make_unique<TsApp>("Auditor");
        mApp->SetRegistryLocation();
        mSettings.keys["LogEvents"] = "1";
    }
    ~AuditTest() override
    {
        mView.reset();
        mTrail.reset();
        mApp.reset();
        korva::RegistryStore::Reset();
    }
    AuditTrail& Trail()
    {
        if (!mTrail)
            mTrail = std::make_unique<AuditTrail>(mDir.File("trail.xml").c_str(), &mSettings);
        return *mTrail;
    }
    AuditTrailView& View()
    {
        mView = std::make_unique<AuditTrailView>();
        mView->resize(600, 400);
        mView->show();
        return *mView;
    }
    QString Text()
    {
        Until([&] { return !mView->GetBusy(); });
        return Eval(*mView, "document.body ? document.body.innerText : ''");
    }
    bool Shows(const char* text)
    {
        return Until([&] { return Text().contains(text); }, 15000);
    }
    TempDir mDir;
    MemorySection mSettings;
    std::unique_ptr<TsApp> mApp;
    std::unique_ptr<AuditTrail> mTrail;
    std::unique_ptr<AuditTrailView> mView;
};

TEST_F(AuditTest, ViewRendersTheTrailAndFollowsItsSessions)
{
    AuditTrailView& view = View();
    EXPECT_TRUE(Shows("There is no audit trail to show."));
    Trail().BeginSessionAndVerifySignature();
    Trail().AddEvent("Model fitted", "3 components", 0);
    Trail().Save();
    view.SetAuditTrail(&Trail());
    EXPECT_TRUE(Shows("Model fitted")) << Text().toStdString();
    EXPECT_TRUE(Text().contains("3 components"));
    // Rendered by the style sheet, not shown as the bare XML tree.
    EXPECT_GT(Eval(view, "document.getElementsByTagName('li').length").toInt(), 0);
    EXPECT_EQ(view.GetLocationURL(), "file://" + mDir.File("trail.xml"));

    // Off: the not-on page. On again: the file is navigated to anew, not refreshed.
    AuditTrailPage page(&Trail());
    page.OnInitDialog();
    QTest::mouseClick(Control<QCheckBox>(&page, AuditTrailPage::IDC_CB_LOGEVENTS), Qt::LeftButton);
    page.OnApply();
    EXPECT_TRUE(Shows("turned off"));
    EXPECT_FALSE(view.IsLoggingOn());
    QTest::mouseClick(Control<QCheckBox>(&page, AuditTrailPage::IDC_CB_LOGEVENTS), Qt::LeftButton);
    page.OnApply();
    EXPECT_TRUE(view.IsNavigated());
    EXPECT_TRUE(Shows("Audit Trail turned on.")) << Text().toStdString();
    EXPECT_TRUE(Text().contains("Audit Trail turned off."));
    // The off event was written while logging still worked, before the new session's events.
    const std::string xml = ReadFile(mDir.File("trail.xml"));
    EXPECT_LT(xml.find("Audit Trail turned off."), xml.find("Audit Trail turned on.")) << xml;
    EXPECT_NE(xml.find("Extended User Information: Off"), std::string::npos);
}

TEST_F(AuditTest, F5SavesOnlyUnsavedEventsAndAppLinksRunMappedCommandsOnly)
{
    AuditTrailView& view = View();
    Trail().BeginSessionAndVerifySignature();
    view.SetAuditTrail(&Trail());
    ASSERT_TRUE(Until([&] { return view.GetLocationURL().rfind("file:", 0) == 0 && !view.GetBusy(); }));
    QWidget* input = nullptr;
    ASSERT_TRUE(Until([&] { return (input = view.GetBrowser()->focusProxy()) != nullptr; }));
    const auto inode = [&] {
        struct stat info{};
        ::stat(mDir.File("trail.xml").c_str(), &info);
        return info.st_ino;
    };
    const auto before = inode();
    QTest::keyClick(input, Qt::Key_F5);
    EXPECT_EQ(inode(), before);
    Trail().AddEvent("Scores plotted", nullptr, 0);
    QTest::keyClick(input, Qt::Key_F5);
    EXPECT_NE(inode(), before);
    EXPECT_FALSE(Trail().HasUnsavedEvents());
    EXPECT_TRUE(Shows("Scores plotted"));

    CmdTarget target;
    std::vector<unsigned int> ran;
    target.OnCommand(34790, [&] { ran.push_back(34790); });
    view.SetCmdMap({{"Plot", 34790}}, &target);
    for (const char* url : {"APP:plot", "app:Plot"}) {
        SCOPED_TRACE(url);
        bool cancel = false;
        view.OnBeforeNavigate2(url, cancel);
        EXPECT_TRUE(cancel);
    }
    Until([&] { return !ran.empty(); }, 2000);
    EXPECT_EQ(ran, std::vector<unsigned int>{34790});
}

TEST_F(AuditTest, RightClickShowsTheViewsMenuGreyWithoutATrail)
{
    AuditTrailView& view = View();
    ASSERT_TRUE(Shows("There is no audit trail"));
    QWidget* input = view.GetBrowser()->focusProxy();
    ASSERT_TRUE(input);
    std::map<unsigned int, bool> enabled;
    WhenModal([&](QWidget* popup) {
        for (QAction* action : popup->actions())
            enabled[action->property("commandId").toUInt()] = action->isEnabled();
        popup->close();
    });
    QTest::mouseClick(input, Qt::RightButton, {}, QPoint(30, 30));
    EXPECT_EQ(enabled, (std::map<unsigned int, bool>{{0, true}, {57634, true}, {57642, true}, {57604, false},
                                                      {57607, false}}));
}

TEST_F(AuditTest, PageWithoutATrailShowsTheAdministratorsSettingsDisabled)
{
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, (std::string(GetRegistryBaseKeyName()) + "\\AuditTrail").c_str(), 0,
                              nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    const std::uint32_t two = 2;
    RegSetValueExA(key, "LogEvents", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&two), sizeof two);
    RegCloseKey(key);
    const struct { AuditTrail* trail; bool locked; bool checked; std::vector<bool> enabled; } rows[] = {
        {nullptr, false, true, {false, false, false, false}},
        {&Trail(), true, true, {false, false, false, true}},
        {&Trail(), false, true, {true, true, true, true}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.locked);
        AuditTrailPage page(row.trail);
        page.LockPage(row.locked);
        EXPECT_TRUE(page.OnInitDialog());
        std::vector<bool> enabled;
        for (int id : {16255, 16254, 16252, 16256})
            enabled.push_back(Control(&page, id)->isEnabled());
        EXPECT_EQ(enabled, row.enabled);
        EXPECT_EQ(Control<QCheckBox>(&page, 16255)->isChecked(), row.checked);
    }
}

TEST_F(AuditTest, ExtendedUserInfoIsKeptPerUserAndCancelFromAPageNeverAsks)
{
    AuditTrailSettingsUI::SetExtendedUserInfo("", "nobody");
    AuditTrailSettingsUI::SetExtendedUserInfo("ann", nullptr);
    EXPECT_EQ(AuditTrailSettingsUI::GetExtendedUserInfo("ann"), "");
    AuditTrailSettingsUI::SetExtendedUserInfo("QA lab, room 4");
    EXPECT_EQ(AuditTrailSettingsUI::GetExtendedUserInfo(), "QA lab, room 4");
    MemorySection user;
    AuditTrailSettingsUI::ApplyAdminSettingsOnUserSettings(&user);
    EXPECT_EQ(user.keys["ExtendedUserInfo"], "QA lab, room 4");

    AuditTrailSettings settings(&user);
    settings.mPromptForExtendedUserInfo = true;
    QWidget parent;
    for (QWidget* owner : {&parent, static_cast<QWidget*>(nullptr)}) {
        SCOPED_TRACE(owner ? "from a page" : "at a session's start");
        int boxes = 0;
        WhenModal([&](QWidget* input) {
            ++boxes;
            WhenModal([&](QWidget* question) { ++boxes, Control<QPushButton>(question, IDYES)->click(); },
                      std::chrono::milliseconds(1500));
            static_cast<QDialog*>(input)->reject();
        });
        bool disabled = true;
        EXPECT_EQ(AuditTrailSettingsUI::EditExtendedUserInfo(&settings, disabled, owner), "");
        Until([] { return false; }, 1600);
        EXPECT_EQ(boxes, owner ? 1 : 2);
        EXPECT_EQ(disabled, owner == nullptr);
        EXPECT_EQ(settings.mPromptForExtendedUserInfo, owner != nullptr);
    }
}

} // namespace
