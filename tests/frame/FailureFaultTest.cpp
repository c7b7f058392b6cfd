// Processor faults inside RunWithFaultTranslation, raised for real: they must come out as TsSystemException with the
// right code and text, and the process must go on working afterwards.

#include <KORVAutlwin/frame/CExceptionHelper.h>
#include <KORVAutlwin/frame/FaultTranslation.h>
#include <KORVAutlwin/frame/TsSystemException.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>

#include <gtest/gtest.h>

#include <cfenv>
#include <cstdint>
#include <stdexcept>

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using korva::RunWithFaultTranslation;

std::pair<unsigned int, std::string> Fault(const std::function<void()>& body)
{
    try {
        RunWithFaultTranslation(body);
    } catch (const TsSystemException& exception) {
        return {exception.GetCode(), exception.Why()};
    }
    return {0, ""};
}

[[gnu::noinline]] void WriteAt(std::uintptr_t address)
{
    *reinterpret_cast<volatile int*>(address) = 7;
}

[[gnu::noinline]] int Recurse(int depth)
{
    volatile char block[256];
    block[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : Recurse(depth + 1) + block[0];
}

std::string Text(unsigned int id)
{
    return LanguageString::Get(id);
}

TEST(FailureFaultTest, EachFaultComesOutWithItsCodeAndTheProcessGoesOn)
{
    [[maybe_unused]] volatile int numerator = 17, denominator = 0, result = 0;
    [[maybe_unused]] volatile double one = 1.0, zero = 0.0, quotient = 0.0;
    // A page of a mapped file beyond the file's end: the in-page error of a short file.
    char path[] = "/tmp/korva-inpage-XXXXXX";
    const int fd = mkstemp(path);
    const long page = sysconf(_SC_PAGESIZE);
    ASSERT_EQ(ftruncate(fd, page), 0);
    auto* mapped = static_cast<volatile char*>(mmap(nullptr, 2 * page, PROT_READ, MAP_SHARED, fd, 0));
    ASSERT_NE(mapped, MAP_FAILED);
    const struct { const char* name; std::function<void()> body; unsigned int code; } cases[] = {
        {"null write", [] { WriteAt(0); }, 0xC0000005u},
        {"again, elsewhere", [] { WriteAt(0x40); }, 0xC0000005u},
        {"nothing", [] {}, 0u},
        {"in-page", [&] { result = mapped[page]; }, 0xC0000006u},
        {"mapped page", [&] { result = mapped[0]; }, 0u},
#if defined(__x86_64__)
        // Integer division traps on this processor; floating point only when enabled.
        {"integer division", [&] { result = numerator / denominator; }, 0xC0000094u},
        {"float division", [&] { feenableexcept(FE_DIVBYZERO); quotient = one / zero; }, 0xC000008Eu},
        {"ud2", [] { __builtin_trap(); }, 0xC000001Du},
        {"int3", [] { asm volatile("int3"); }, 0x80000003u},
#endif
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Fault(c.body).first, c.code) << c.name;
        fedisableexcept(FE_ALL_EXCEPT);
        feclearexcept(FE_ALL_EXCEPT);
    }
    munmap(const_cast<char*>(mapped), 2 * page);
    close(fd);
    unlink(path);
    // The text is the common head and the code's own text; a code outside the table has the unknown text.
    EXPECT_EQ(Fault([] { WriteAt(0); }).second, Text(13293) + Text(13294));
    EXPECT_EQ(TsSystemException::GetText(0xE06D7363u), Text(13316));
}

TEST(FailureFaultTest, GuardsNest)
{
    // A fault in the inner guard ends there; the outer body goes on and its guard catches its own fault.
    unsigned int inner = 0;
    EXPECT_EQ(Fault([&] {
                  inner = Fault([] { WriteAt(0x80); }).first;
                  WriteAt(0x90);
              }).first,
              0xC0000005u);
    EXPECT_EQ(inner, 0xC0000005u);
    // A translated fault that the outer body does not catch travels on through the outer guard.
    EXPECT_EQ(Fault([] { RunWithFaultTranslation([] { WriteAt(0xA0); }); }).first, 0xC0000005u);
    // Ordinary exceptions pass through guards unchanged, and leave no guard behind.
    EXPECT_THROW(RunWithFaultTranslation([] { RunWithFaultTranslation([] { throw std::runtime_error("x"); }); }),
                 std::runtime_error);
    EXPECT_EQ(Fault([] { WriteAt(0xB0); }).first, 0xC0000005u);
}

TEST(FailureFaultTest, StackOverflowOnAThreadWithASmallStack)
{
    struct Run
    {
        std::pair<unsigned int, std::string> fault;
        bool wentOn = false;
    } run;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    pthread_t thread;
    const auto body = [](void* argument) -> void* {
        auto* run = static_cast<Run*>(argument);
        run->fault = Fault([] { Recurse(0); });
        // The thread's stack is usable again after the overflow.
        run->wentOn = Fault([] { Recurse(-1); }).first == 0 && Fault([] { WriteAt(0); }).first == 0xC0000005u;
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, body, &run), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(run.fault, std::pair(0xC00000FDu, Text(13293) + Text(13312)));
    EXPECT_TRUE(run.wentOn);
}

TEST(FailureFaultTest, TranslatorAndErrorTexts)
{
    // A TsSystemException is an Exception for every handler that knows only those.
    try {
        TsSETranslator(0xC0000094u, nullptr);
        FAIL() << "no exception";
    } catch (const Exception& exception) {
        EXPECT_EQ(dynamic_cast<const TsSystemException&>(exception).GetCode(), 0xC0000094u);
        EXPECT_EQ(std::string(exception.Why()), Text(13293) + Text(13306));
    }

    // The system's own text, trimmed, before the number.
    const std::string text = CExceptionHelper::GetErrorText(2);
    EXPECT_TRUE(text.ends_with(" (2)") && !text.ends_with("  (2)") && !text.starts_with("Unknown error.")) << text;
    EXPECT_EQ(CExceptionHelper::GetErrorText(987654), "Unknown error. (987654)");
    const std::pair<std::string, std::string> messages[] = {{"Disk full. \n\t ", "Disk full."}, {"  \n", "Unknown error"}};
    for (const auto& [why, message] : messages) {
        const Exception exception(why.c_str());
        EXPECT_EQ(CExceptionHelper::GetErrorMessage(&exception), message);
    }
    const std::runtime_error standard("bad value\n");
    EXPECT_EQ(CExceptionHelper::GetErrorMessage(&standard), "bad value");
    EXPECT_EQ(CExceptionHelper::GetErrorMessage(static_cast<const std::exception*>(nullptr)), "Unknown error");
}

} // namespace
