// The small tools of the frame: LibraryLoader on real libraries and the
// off-screen painting surface.

#include "../utl/TempDir.h"
#include "TestApplication.h"

#include <KORVAutlwin/frame/CMemDC.h>
#include <KORVAutlwin/frame/LibraryLoader.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsString.h>

#include <dlfcn.h>

#include <cerrno>
#include <cstring>

namespace {

std::string ThrownText(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Exception& e) {
        return e.Why();
    }
    return "(nothing thrown)";
}

TEST(LibraryLoaderTest, MissingFileAndNonLibraryAreRefusedWithTheirOwnTexts)
{
    TempDir dir;
    for (const std::string& missing : {dir.File("missing.so"), std::string("libkorva-no-such-library.so")})
        EXPECT_EQ(ThrownText([&] { LibraryLoader loader(missing.c_str()); }), "The file " + missing + " does not exist.");
    const std::string text = dir.File("notes.so");
    WriteFile(text, "This is a text file, not a library.\n");
    // The system's own words for this file, as dlopen gives them.
    ASSERT_EQ(::dlopen(text.c_str(), RTLD_NOW), nullptr);
    const std::string why = "The library " + text + " could not be loaded: " + ::dlerror() + ".";
    EXPECT_EQ(ThrownText([&] { LibraryLoader loader(text.c_str()); }), why);
    // Open reports the same way, and leaves nothing held behind.
    LibraryLoader loader;
    EXPECT_EQ(ThrownText([&] { loader.Open(text.c_str()); }), why);
    EXPECT_EQ(loader.GetHandle(), nullptr);
}

TEST(LibraryLoaderTest, RealLibrariesLoadAndGiveTheirFunctions)
{
    Dl_info info{};
    ASSERT_TRUE(::dladdr(reinterpret_cast<void*>(&tsstrdup), &info) && info.dli_fname);
    LibraryLoader loader(info.dli_fname);
    // The exported C++ function, found by its linker name.
    EXPECT_EQ(loader.GetFunction("_Z8tsstrdupPKc"), reinterpret_cast<void*>(&tsstrdup));
    EXPECT_EQ(loader.GetFunction("korva_no_such_function"), nullptr);

    // A bare name is found where the system keeps its libraries.
    ASSERT_TRUE(loader.Open("libm.so.6"));
    auto* cosine = reinterpret_cast<double (*)(double)>(loader.GetFunction("cos"));
    ASSERT_NE(cosine, nullptr);
    EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);
    EXPECT_TRUE(loader.Close());
    EXPECT_EQ(loader.GetHandle(), nullptr);
    EXPECT_TRUE(loader.Close()) << "nothing held: nothing to do";
    EXPECT_EQ(ThrownText([&] { loader.GetFunction("cos"); }),
              TsString::Format("No library is loaded to look up the function cos in: %s.", std::strerror(EBADF)));
}

TEST(CMemDCTest, PictureReachesThePainterOnlyAtTheEndOverTheBackground)
{
    korva::test::Application();
    QImage image(60, 40, QImage::Format_ARGB32);
    image.fill(Qt::green);
    QPainter painter(&image);
    painter.setBackground(QColor(Qt::yellow));
    {
        CMemDC dc(&painter, QRect(0, 0, 50, 30));
        dc.fillRect(QRect(10, 10, 5, 5), Qt::red);
        EXPECT_EQ(image.pixelColor(12, 12), QColor(Qt::green)) << "nothing drawn yet";
    }
    painter.end();
    // The picture, the background fill, and outside the rectangle nothing.
    EXPECT_EQ(image.pixelColor(12, 12), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(2, 2), QColor(Qt::yellow));
    EXPECT_EQ(image.pixelColor(55, 35), QColor(Qt::green));
}

} // namespace
