// The audit trail's file, its signature and its settings: sessions and events
// written and read back, hand edits caught, a killed writer leaving a whole
// file, and the administrator's settings merged into a user's.

#include "MemorySection.h"
#include "TempDir.h"

#include <KORVAutl/AuditTrail.h>
#include <KORVAutl/Exception.h>
#include <KORVAutlwin/platform/Registry.h>
#include <KORVAutlwin/platform/RegistryStore.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Trail
{
    TempDir dir;
    MemorySection settings;
    std::string path = dir.File("trail.xml");

    std::unique_ptr<AuditTrail> Make(int logEvents = 1)
    {
        settings.keys["LogEvents"] = std::to_string(logEvents);
        settings.keys["ExtendedUserInfo"] = "QA, room 4";
        return std::make_unique<AuditTrail>(path.c_str(), &settings);
    }
};

TEST(AuditTrailTest, SessionsAndEventsReadBackWithTheirFields)
{
    Trail t;
    {
        auto trail = t.Make();
        trail->SetProjectName("Wine study");
        EXPECT_EQ(trail->BeginSessionAndVerifySignature(), AuditTrail::eSignatureMissing);
        trail->AddEvent("Model fitted", "3 components", 0);
        trail->AddEvent("Exported", nullptr, 0);
        EXPECT_TRUE(trail->HasUnsavedEvents());
        trail->EndSessionAndSave();
        EXPECT_FALSE(trail->HasUnsavedEvents());
    }
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(t.path.c_str()));
    const auto root = document.child("AuditTrail");
    EXPECT_STREQ(root.attribute("Project").value(), "Wine study");
    const auto session = root.child("Session");
    EXPECT_TRUE(session.attribute("Start") && session.attribute("End"));
    const auto first = session.child("Event");
    EXPECT_STREQ(first.child_value("Title"), "Model fitted");
    EXPECT_STREQ(first.child_value("Detail"), "3 components");
    EXPECT_STREQ(first.attribute("ExtendedUserInfo").value(), "QA, room 4");
    EXPECT_NE(std::string(first.attribute("Time").value()).find('T'), std::string::npos);
    EXPECT_FALSE(first.next_sibling("Event").child("Detail"));

    auto again = t.Make();
    again->Load();
    EXPECT_FALSE(again->IsEmpty());
    EXPECT_EQ(again->GetProjectName(), "Wine study");
    EXPECT_EQ(AuditTrail::VerifySignature(t.path), AuditTrail::eSignatureValid);
}

TEST(AuditTrailTest, EventsAreOnlyLoggedWhileTheTrailIsOn)
{
    Trail t;
    auto trail = t.Make(0);
    int added = 0;
    boost::signals2::scoped_connection c = AuditTrail::msAuditTrailEventAdded.connect([&](AuditTrail*) { ++added; });
    trail->AddEvent("ignored", nullptr, 0);
    EXPECT_TRUE(trail->IsEmpty());
    trail->GetSettings().mLogEvents = 1;
    trail->AddEvent("kept", nullptr, 0);
    EXPECT_FALSE(trail->IsEmpty());
    EXPECT_EQ(added, 1);
}

TEST(AuditTrailTest, SignatureCheckFindsHandEdits)
{
    const struct { const char* name; std::function<void(const std::string&)> edit; AuditTrail::ESignature result; } rows[] = {
        {"untouched", [](const std::string&) {}, AuditTrail::eSignatureValid},
        {"reindented only", [](const std::string& p) {
             pugi::xml_document d; d.load_file(p.c_str(), pugi::parse_default | pugi::parse_pi); d.save_file(p.c_str(), "\t");
         }, AuditTrail::eSignatureValid},
        {"title changed", [](const std::string& p) {
             std::string x = ReadFile(p); x.replace(x.find("Deleted"), 7, "Checked"); WriteFile(p, x);
         }, AuditTrail::eSignatureInvalid},
        {"event removed", [](const std::string& p) {
             pugi::xml_document d; d.load_file(p.c_str()); auto s = d.child("AuditTrail").child("Session");
             s.remove_child(s.child("Event")); d.save_file(p.c_str());
         }, AuditTrail::eSignatureInvalid},
        {"signature removed", [](const std::string& p) { ::unlink(AuditTrail::SignatureFileName(p).c_str()); },
         AuditTrail::eSignatureInvalid},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Trail t;
        {
            auto trail = t.Make();
            trail->BeginSessionAndVerifySignature();
            trail->AddEvent("Deleted 3 samples", "outliers", 0);
            trail->EndSessionAndSave();
        }
        row.edit(t.path);
        auto trail = t.Make();
        trail->Load();
        EXPECT_EQ(trail->BeginSessionAndVerifySignature(), row.result);
        trail->Save();
        const bool noted = ReadFile(t.path).find("Audit Trail signature check failed.") != std::string::npos;
        EXPECT_EQ(noted, row.result == AuditTrail::eSignatureInvalid);
    }
}

TEST(AuditTrailTest, DamagedFileIsNeverWrittenOver)
{
    Trail t;
    WriteFile(t.path, "<AuditTrail><Session>");
    auto trail = t.Make();
    EXPECT_NE(Thrown([&] { trail->Load(); }).find("is damaged"), std::string::npos);
    trail->AddEvent("new", nullptr, 0);
    EXPECT_NE(Thrown([&] { trail->Save(); }).find("not written over"), std::string::npos);
    EXPECT_EQ(ReadFile(t.path), "<AuditTrail><Session>");
}

TEST(AuditTrailTest, WriterKilledMidSaveLeavesAReadableSignedTrail)
{
    Trail t;
    {
        auto trail = t.Make();
        trail->BeginSessionAndVerifySignature();
        trail->EndSessionAndSave();
    }
    // The child saves a growing trail without end; it is killed at varying moments.
    for (int delayUs : {300, 1100, 2700, 5000, 9000, 15000}) {
        SCOPED_TRACE(delayUs);
        const pid_t child = fork();
        if (child == 0) {
            auto trail = t.Make();
            trail->Load();
            for (int i = 0;; ++i) {
                trail->AddEvent(std::string(200, 'a' + i % 26).c_str(), "detail", 0);
                trail->Save();
            }
        }
        ::usleep(delayUs);
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        auto trail = t.Make();
        EXPECT_NO_THROW(trail->Load());
        EXPECT_EQ(AuditTrail::VerifySignature(t.path), AuditTrail::eSignatureValid);
    }
}

TEST(AuditTrailTest, SignalsCarryTheTrail)
{
    Trail t;
    std::vector<std::string> seen;
    AuditTrail* raw = nullptr;
    auto note = [&](const char* name) {
        return [&, name](AuditTrail* trail) { seen.push_back(std::string(name) + (trail == raw ? "" : "?")); };
    };
    boost::signals2::scoped_connection c[] = {
        AuditTrail::msAuditTrailBeginSession.connect(note("begin")),
        AuditTrail::msAuditTrailEndSession.connect(note("end")),
        AuditTrail::msAuditTrailActiveAuditTrailChanged.connect(note("changed")),
        AuditTrail::msAuditTrailDeleting.connect(note("deleting")),
    };
    auto trail = t.Make();
    raw = trail.get();
    trail->BeginSessionAndVerifySignature();
    trail->EndSessionAndSave();
    trail->BroadCastChange();
    trail.reset();
    EXPECT_EQ(seen, (std::vector<std::string>{"begin", "end", "changed", "deleting"}));
}

class AdminSettingsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("KORVA_REGISTRY_DIR", mDir.Path().c_str(), 1);
        korva::RegistryStore::Reset();
    }
    void TearDown() override
    {
        ::unsetenv("KORVA_REGISTRY_DIR");
        korva::RegistryStore::Reset();
    }
    static void SetAdmin(HKEY root, const char* name, std::uint32_t value)
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(root, "SOFTWARE\\Co\\App\\AuditTrail", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                  nullptr), ERROR_SUCCESS);
        RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
        RegCloseKey(key);
    }
    TempDir mDir;
};

TEST_F(AdminSettingsTest, AdministratorValuesMergeByTheirRules)
{
    const struct { const char* name; std::optional<int> admin; std::optional<int> user; int result; } rows[] = {
        {"LogEvents", 1, 1, 1}, {"LogEvents", 1, 0, 1}, {"LogEvents", 2, 1, 2}, {"LogEvents", 2, 5, 2},
        {"LogEvents", 0, 1, 1}, {"LogEvents", 1, std::nullopt, 1}, {"LogEvents", std::nullopt, 0, 0},
        {"LockedUI", 1, 0, 1}, {"LockedUI", 0, 1, 1}, {"LockedUI", 0, std::nullopt, 0},
        {"PromptForExtendedUserInfo", 1, 0, 1}, {"PromptForExtendedUserInfo", 0, 1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " admin " + (row.admin ? std::to_string(*row.admin) : "-") + " user " +
                     (row.user ? std::to_string(*row.user) : "-"));
        HKEY key = nullptr;
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Co\\App\\AuditTrail", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr);
        RegDeleteValueA(key, row.name);
        RegCloseKey(key);
        if (row.admin)
            SetAdmin(HKEY_LOCAL_MACHINE, row.name, *row.admin);
        MemorySection user;
        if (row.user)
            user.WriteInt(row.name, *row.user);
        EXPECT_TRUE(AuditTrailSettings::ApplyAdminSettings(&user, "SOFTWARE\\Co\\App"));
        int value = -1;
        EXPECT_EQ(user.ReadInt(row.name, value), row.admin || row.user);
        EXPECT_EQ(row.admin || row.user ? value : 0, row.result);
    }
}

TEST_F(AdminSettingsTest, PromptSettingTrueInEitherHive)
{
    EXPECT_FALSE(AuditTrailSettings::GetPromptForExtendedUserInfo("SOFTWARE\\Co\\App"));
    MemorySection user;
    EXPECT_FALSE(AuditTrailSettings::ApplyAdminSettings(&user, "SOFTWARE\\Co\\App"));
    SetAdmin(HKEY_CURRENT_USER, "PromptForExtendedUserInfo", 1);
    SetAdmin(HKEY_LOCAL_MACHINE, "PromptForExtendedUserInfo", 0);
    EXPECT_TRUE(AuditTrailSettings::GetPromptForExtendedUserInfo("SOFTWARE\\Co\\App"));
    EXPECT_TRUE(AuditTrailSettings::SetPromptForExtendedUserInfo("SOFTWARE\\Co\\App", false));
    SetAdmin(HKEY_CURRENT_USER, "PromptForExtendedUserInfo", 0);
    EXPECT_FALSE(AuditTrailSettings::GetPromptForExtendedUserInfo("SOFTWARE\\Co\\App"));
}

} // namespace
