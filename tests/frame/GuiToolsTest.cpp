// LibraryLoader's refusals, each with its own text.

#include "../utl/TempDir.h"

#include <KORVAutlwin/frame/LibraryLoader.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsString.h>

#include <dlfcn.h>

#include <cerrno>
#include <cstring>

namespace {

TEST(LibraryLoaderTest, MissingFileAndNonLibraryAreRefusedWithTheirOwnTexts)
{
    TempDir dir;
    for (const std::string& missing : {dir.File("missing.so"), std::string("libkorva-no-such-library.so")})
        EXPECT_EQ(Thrown([&] { LibraryLoader loader(missing.c_str()); }), "The file " + missing + " does not exist.");
    const std::string text = dir.File("notes.so");
    WriteFile(text, "This is a text file, not a library.\n");
    // The system's own words for this file, as dlopen gives them.
    ASSERT_EQ(::dlopen(text.c_str(), RTLD_NOW), nullptr);
    const std::string why = "The library " + text + " could not be loaded: " + ::dlerror() + ".";
    EXPECT_EQ(Thrown([&] { LibraryLoader loader(text.c_str()); }), why);
    // Open reports the same way, and leaves nothing held behind.
    LibraryLoader loader;
    EXPECT_EQ(Thrown([&] { loader.Open(text.c_str()); }), why);
    // Without a library nothing is to close, and nothing to look up.
    EXPECT_TRUE(loader.Close());
    EXPECT_EQ(Thrown([&] { loader.GetFunction("cos"); }),
              TsString::Format("No library is loaded to look up the function cos in: %s.", std::strerror(EBADF)));
}

} // namespace
