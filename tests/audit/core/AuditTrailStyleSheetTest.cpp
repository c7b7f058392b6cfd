// Where the audit trail's style sheet comes from: a site's own copy in the
// application data folder, else the resource for the browser's version,
// written over whatever stands beside the trail.

#include "utl/TempDir.h"

#include <KORVAutlwin/audit/AuditTrailStyleSheet.h>
#include <KORVAutlwin/platform/Registry.h>
#include <KORVAutlwin/platform/RegistryStore.h>

#include <KORVAutl/ResourceModule.h>

#include <gtest/gtest.h>

#include <cstring>

#include <sys/stat.h>

namespace {

class StyleSheetTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("KORVA_REGISTRY_DIR", mRegistry.Path().c_str(), 1);
        korva::RegistryStore::Reset();
    }
    void TearDown() override
    {
        ::unsetenv("KORVA_REGISTRY_DIR");
        korva::RegistryStore::Reset();
    }
    static void SetBrowserVersion(const char* text)
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Internet Explorer\\Version Vector\\", 0,
                                  nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExA(key, "IE", 0, REG_SZ, reinterpret_cast<const BYTE*>(text), static_cast<DWORD>(std::strlen(text) + 1));
        RegCloseKey(key);
    }
    static std::string Resource(unsigned int id)
    {
        std::size_t size = 0;
        const char* data = korva::EnglishResourceModule().FindResource(id, "HTML", &size);
        return data ? std::string(data, size) : std::string();
    }
    TempDir mRegistry;
};

TEST_F(StyleSheetTest, BrowserVersionChoosesTheResource)
{
    const struct { const char* value; unsigned int resource; } rows[] = {
        {"5.5", 13166}, {"8.0", 13166}, {"11.0000", 13166}, {"5.0", 13168}, {"5.49", 13168},
        {"eight", 13168}, {"", 13168}, {"8.0 beta", 13168},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(AuditTrailStyleSheet::ResourceForVersion(row.value), row.resource);
    }
    EXPECT_EQ(AuditTrailStyleSheet::ResourceForVersion(nullptr), 13168u);
    EXPECT_EQ(AuditTrailStyleSheet::PathBeside("/data/study/trail.xml"), "/data/study/audit_trail.xsl");
}

TEST_F(StyleSheetTest, SitesOwnSheetWinsElseTheResourceIsWrittenEachTime)
{
    TempDir project, appData;
    const std::string xml = project.File("trail.xml");
    const std::string beside = project.File("audit_trail.xsl");
    ASSERT_NE(Resource(13166), Resource(13168));

    // No registry value: the plain sheet, over a file that stood there.
    WriteFile(beside, "old");
    EXPECT_TRUE(AuditTrailStyleSheet::Place(xml.c_str(), appData.Path()));
    EXPECT_EQ(ReadFile(beside), Resource(13168));
    SetBrowserVersion("8.0");
    EXPECT_EQ(AuditTrailStyleSheet::ReadBrowserVersion(), "8.0");
    EXPECT_TRUE(AuditTrailStyleSheet::Place(xml.c_str(), ""));
    EXPECT_EQ(ReadFile(beside), Resource(13166));

    // A readable site sheet is copied and no resource is written.
    WriteFile(appData.File("audit_trail.xsl"), "<site/>");
    EXPECT_TRUE(AuditTrailStyleSheet::Place(xml.c_str(), appData.Path()));
    EXPECT_EQ(ReadFile(beside), "<site/>");
    // An unreadable one counts as absent (root reads anything, so only the mode is checked there).
    if (::geteuid() != 0) {
        ::chmod(appData.File("audit_trail.xsl").c_str(), 0);
        EXPECT_TRUE(AuditTrailStyleSheet::Place(xml.c_str(), appData.Path()));
        EXPECT_EQ(ReadFile(beside), Resource(13166));
    }
}

} // namespace
