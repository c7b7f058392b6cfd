// The small tools of the frame: LibraryLoader on real libraries, the resource
// module scope, HTML resources and the off-screen painting surface.

#include "../utl/TempDir.h"
#include "TestApplication.h"

#include <KORVAutlwin/frame/CMemDC.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/LibraryLoader.h>
#include <KORVAutlwin/frame/SetResourceInstance.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsString.h>

#include <QImage>
#include <QPainter>
#include <QWidget>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <string>

namespace {

// --- LibraryLoader ----------------------------------------------------------------

std::string ThrownText(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Exception& e) {
        return e.Why();
    }
    return "(nothing thrown)";
}

// The file of the loaded utility library, as the dynamic linker found it.
std::string UtilityLibraryPath()
{
    Dl_info info{};
    if (!::dladdr(reinterpret_cast<void*>(&tsstrdup), &info) || !info.dli_fname)
        return std::string();
    return info.dli_fname;
}

TEST(LibraryLoaderTest, MissingFileAndNonLibraryAreRefusedWithTheirOwnTexts)
{
    TempDir dir;
    const std::string missing = dir.File("missing.so");
    EXPECT_EQ(ThrownText([&] { LibraryLoader loader(missing.c_str()); }),
              "The file " + missing + " does not exist.");
    EXPECT_EQ(ThrownText([] { LibraryLoader loader("libkorva-no-such-library.so"); }),
              "The file libkorva-no-such-library.so does not exist.");

    const std::string text = dir.File("notes.so");
    std::ofstream(text) << "This is a text file, not a library.\n";
    // The system's own words for this file, as dlopen gives them.
    ASSERT_EQ(::dlopen(text.c_str(), RTLD_NOW), nullptr);
    const std::string systemText = ::dlerror();
    const std::string why = ThrownText([&] { LibraryLoader loader(text.c_str()); });
    EXPECT_EQ(why, "The library " + text + " could not be loaded: " + systemText + ".");

    // Open reports the same way, and leaves nothing held behind.
    LibraryLoader loader;
    EXPECT_EQ(ThrownText([&] { loader.Open(text.c_str()); }), why);
    EXPECT_EQ(loader.GetHandle(), nullptr);
}

TEST(LibraryLoaderTest, RealLibrariesLoadAndGiveTheirFunctions)
{
    const std::string path = UtilityLibraryPath();
    ASSERT_FALSE(path.empty());
    LibraryLoader loader(path.c_str());
    ASSERT_NE(loader.GetHandle(), nullptr);
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
    EXPECT_TRUE(loader.Close());   // nothing held: nothing to do
    EXPECT_EQ(ThrownText([&] { loader.GetFunction("cos"); }),
              TsString::Format("No library is loaded to look up the function cos in: %s.", std::strerror(EBADF)));
}

TEST(LibraryLoaderTest, HandlesAreTakenOverAndCopied)
{
    void* handle = ::dlopen("libm.so.6", RTLD_NOW);
    ASSERT_NE(handle, nullptr);
    LibraryLoader owner(handle);
    EXPECT_NE(owner.GetFunction("sqrt"), nullptr);

    LibraryLoader copy;
    copy = owner;
    EXPECT_EQ(copy.GetHandle(), handle);
    copy = owner;   // the same handle again is not freed on the way
    EXPECT_EQ(copy.GetHandle(), handle);
    // Only one of the two may free the one reference.
    EXPECT_EQ(copy.Detach(), handle);
    EXPECT_EQ(copy.GetHandle(), nullptr);
    EXPECT_NE(owner.GetFunction("sqrt"), nullptr);
}

// --- SetResourceInstance and ReadResource ----------------------------------------------

constexpr unsigned int kSharedId = 30602;   // a text the English module has too
constexpr unsigned int kPageId = 4100;
const char kPage[] = "<html><body><p>Hilfe</p></body></html>";

const korva::ResourceModule& GermanModule()
{
    static const korva::StringEntry strings[] = {{kSharedId, "Die Menüressource %u gibt es nicht."}};
    static const korva::ResourceEntry resources[] = {{kPageId, "HTML", kPage, sizeof kPage - 1}};
    static const korva::ResourceModule module("German", strings, 1, resources, 1);
    return module;
}

TEST(SetResourceInstanceTest, TextsComeFromTheModuleOfTheScope)
{
    const std::string english = LanguageString::Get(kSharedId);
    ASSERT_FALSE(english.empty());
    const korva::ResourceModule* before = LanguageString::GetModule();
    {
        SetResourceInstance german(&GermanModule());
        EXPECT_STREQ(LanguageString::Get(kSharedId), "Die Menüressource %u gibt es nicht.");
        EXPECT_EQ(GUIUtilities::ReadResource(kPageId), kPage);
        EXPECT_EQ(GUIUtilities::ReadResource(kPageId + 1), "");
        {
            SetResourceInstance back(nullptr);   // the English module, for an inner scope
            EXPECT_EQ(LanguageString::Get(kSharedId), english);
            EXPECT_EQ(GUIUtilities::ReadResource(kPageId), "");
        }
        EXPECT_STREQ(LanguageString::Get(kSharedId), "Die Menüressource %u gibt es nicht.");
    }
    EXPECT_EQ(LanguageString::GetModule(), before);
    EXPECT_EQ(LanguageString::Get(kSharedId), english);
}

TEST(SetResourceInstanceTest, CopiesPutBackTheSameModule)
{
    const korva::ResourceModule* before = LanguageString::GetModule();
    auto* first = new SetResourceInstance(&GermanModule());
    SetResourceInstance copy(*first);   // saved: the module before
    delete first;
    EXPECT_EQ(LanguageString::GetModule(), before);
    {
        SetResourceInstance german(&GermanModule());
        SetResourceInstance assigned(nullptr);   // saved: German
        assigned = copy;                          // now saved: the module before
        EXPECT_EQ(LanguageString::GetModule(), &korva::EnglishResourceModule());
    }
    // `german` ended last and put back what it had found.
    EXPECT_EQ(LanguageString::GetModule(), before);
}

// --- CMemDC -----------------------------------------------------------------------

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
        EXPECT_EQ(image.pixelColor(12, 12), QColor(Qt::green));   // nothing drawn yet
    }
    painter.end();
    EXPECT_EQ(image.pixelColor(12, 12), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(2, 2), QColor(Qt::yellow));      // the background fill
    EXPECT_EQ(image.pixelColor(55, 35), QColor(Qt::green));     // outside the rectangle

    // The device form paints when it ends.
    {
        CMemDC dc(static_cast<QPaintDevice*>(&image), QRect(0, 0, 20, 20));
        dc.fillRect(QRect(0, 0, 4, 4), Qt::blue);
    }
    EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::blue));
}

// A control that paints through CMemDC, as the header describes.
class MemDCWidget : public QWidget
{
protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        CMemDC dc(&painter, rect());
        dc.fillRect(QRect(20, 20, 10, 10), Qt::red);
    }
};

TEST(CMemDCTest, WidgetIsPaintedOverItsOwnBackgroundColour)
{
    korva::test::Application();
    MemDCWidget widget;
    QPalette palette = widget.palette();
    palette.setColor(widget.backgroundRole(), QColor(0x12, 0x34, 0x56));
    widget.setPalette(palette);
    widget.resize(80, 60);
    const QImage shot = widget.grab().toImage();
    const qreal ratio = shot.devicePixelRatio();
    const auto at = [&](int x, int y) { return shot.pixelColor(std::lround(x * ratio), std::lround(y * ratio)); };
    EXPECT_EQ(at(5, 5), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(at(25, 25), QColor(Qt::red));
    EXPECT_EQ(at(75, 55), QColor(0x12, 0x34, 0x56));
}

} // namespace
