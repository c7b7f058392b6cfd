#pragma once
// The toolkit widget tests share the frame tests' application, with the
// registry store in a folder of their own.

#include "frame/TestApplication.h"

#include <KORVAutlwin/frame/RegistrySection.h>

#include <memory>
#include <string>

namespace korva::test {

/// Each test runs in a process of its own; the store lives as long as the test.
class ToolkitWidgetTest : public testing::Test
{
public:
    ToolkitWidgetTest()
    {
        setenv("KORVA_REGISTRY_DIR", mDir.Path().c_str(), 1);
        Application();
    }
    ~ToolkitWidgetTest() override { unsetenv("KORVA_REGISTRY_DIR"); }

    /// The application's key `section` below HKEY_CURRENT_USER, made when missing.
    static std::unique_ptr<RegistrySection> AppKey(const std::string& section)
    {
        auto key = std::make_unique<RegistrySection>();
        const std::string path = std::string(GetRegistryBaseKeyName()) + "\\" + section;
        EXPECT_TRUE(key->Open(HKEY_CURRENT_USER, path.c_str(), KEY_ALL_ACCESS, true));
        return key;
    }

private:
    TempDir mDir;
};

} // namespace korva::test
