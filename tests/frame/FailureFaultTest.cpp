// Processor faults inside RunWithFaultTranslation, raised for real: they must
// come out as TsSystemException with the right code and text, and the process
// must go on working afterwards.

#include <KORVAutlwin/frame/CExceptionHelper.h>
#include <KORVAutlwin/frame/FaultTranslation.h>
#include <KORVAutlwin/frame/TsSystemException.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using korva::RunWithFaultTranslation;

// The code of the TsSystemException that `body` ends in; 0 when it ends normally.
unsigned int FaultCode(const std::function<void()>& body)
{
    try {
        RunWithFaultTranslation(body);
    } catch (const TsSystemException& exception) {
        return exception.GetCode();
    }
    return 0;
}

[[gnu::noinline]] void WriteAt(std::uintptr_t address)
{
    *reinterpret_cast<volatile int*>(address) = 7;
}

[[gnu::noinline]] int Recurse(int depth)
{
    volatile char block[256];
    block[0] = static_cast<char>(depth);
    if (depth < 0)
        return 0;
    return Recurse(depth + 1) + block[0];
}

std::string Text(unsigned int id)
{
    return LanguageString::Get(id);
}

TEST(FailureFaultTest, NullDereferenceIsAnAccessViolationWithItsText)
{
    try {
        RunWithFaultTranslation([] { WriteAt(0); });
        FAIL() << "the fault was not translated";
    } catch (const TsSystemException& exception) {
        EXPECT_EQ(exception.GetCode(), 0xC0000005u);
        EXPECT_EQ(std::string(exception.Why()), Text(13293) + Text(13294));
        EXPECT_FALSE(Text(13294).empty());
    }
    // The process goes on, and the next fault is translated again.
    EXPECT_EQ(FaultCode([] { WriteAt(0x40); }), 0xC0000005u);
    EXPECT_EQ(FaultCode([] {}), 0u);
}

TEST(FailureFaultTest, IntegerDivisionByZero)
{
#if defined(__x86_64__) || defined(__i386__)
    volatile int numerator = 17;
    volatile int denominator = 0;
    volatile int result = 0;
    EXPECT_EQ(FaultCode([&] { result = numerator / denominator; }), 0xC0000094u);
#else
    GTEST_SKIP() << "integer division by zero does not trap on this processor";
#endif
}

TEST(FailureFaultTest, FloatingPointTrapsAndOtherSignals)
{
#if defined(__x86_64__)
    volatile double one = 1.0;
    volatile double zero = 0.0;
    volatile double result = 0.0;
    EXPECT_EQ(FaultCode([&] {
                  feenableexcept(FE_DIVBYZERO);
                  result = one / zero;
              }),
              0xC000008Eu);
    fedisableexcept(FE_ALL_EXCEPT);
    feclearexcept(FE_ALL_EXCEPT);

    // ud2: an instruction the processor refuses; int3: a breakpoint.
    EXPECT_EQ(FaultCode([] { __builtin_trap(); }), 0xC000001Du);
    EXPECT_EQ(FaultCode([] { asm volatile("int3"); }), 0x80000003u);
#endif
    // A page of a mapped file beyond the file's end: the in-page error of a short file.
    char path[] = "/tmp/korva-inpage-XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    const long page = sysconf(_SC_PAGESIZE);
    ASSERT_EQ(ftruncate(fd, page), 0);
    auto* mapped = static_cast<char*>(mmap(nullptr, static_cast<std::size_t>(2 * page), PROT_READ, MAP_SHARED, fd, 0));
    ASSERT_NE(mapped, MAP_FAILED);
    volatile char sink = 0;
    EXPECT_EQ(FaultCode([&] { sink = mapped[page]; }), 0xC0000006u);
    EXPECT_EQ(FaultCode([&] { sink = mapped[0]; }), 0u);
    munmap(mapped, static_cast<std::size_t>(2 * page));
    close(fd);
    unlink(path);
}

TEST(FailureFaultTest, GuardsNest)
{
    unsigned int inner = 0;
    bool outerWentOn = false;
    // A fault in the inner guard ends there; the outer body goes on.
    EXPECT_EQ(FaultCode([&] {
                  inner = FaultCode([] { WriteAt(0x80); });
                  outerWentOn = true;
                  WriteAt(0x90); // and the outer guard catches its own fault
              }),
              0xC0000005u);
    EXPECT_EQ(inner, 0xC0000005u);
    EXPECT_TRUE(outerWentOn);

    // A translated fault that the outer body does not catch travels on through the outer guard.
    EXPECT_EQ(FaultCode([] { RunWithFaultTranslation([] { WriteAt(0xA0); }); }), 0xC0000005u);

    // Ordinary exceptions pass through guards unchanged, and leave no guard behind.
    EXPECT_THROW(RunWithFaultTranslation([] { RunWithFaultTranslation([] { throw std::runtime_error("x"); }); }),
                 std::runtime_error);
    EXPECT_EQ(FaultCode([] { WriteAt(0xB0); }), 0xC0000005u);
}

struct OverflowRun
{
    unsigned int code = 0;
    std::string text;
    bool wentOn = false;
};

void* OverflowThread(void* argument)
{
    auto* run = static_cast<OverflowRun*>(argument);
    try {
        RunWithFaultTranslation([] { Recurse(0); });
    } catch (const TsSystemException& exception) {
        run->code = exception.GetCode();
        run->text = exception.Why();
    }
    // The thread's stack is usable again after the overflow.
    run->wentOn = FaultCode([] { Recurse(-1); }) == 0 && FaultCode([] { WriteAt(0); }) == 0xC0000005u;
    return nullptr;
}

TEST(FailureFaultTest, StackOverflowOnAThreadWithASmallStack)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    OverflowRun run;
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, OverflowThread, &run), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(run.code, 0xC00000FDu);
    EXPECT_EQ(run.text, Text(13293) + Text(13312));
    EXPECT_TRUE(run.wentOn);
}

TEST(FailureFaultTest, StackOverflowOnTheMainThread)
{
    // The event dispatch runs on the main thread, whose stack grows up to the limit.
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &limit), 0);
    if (limit.rlim_cur == RLIM_INFINITY || limit.rlim_cur > 64UL * 1024 * 1024)
        GTEST_SKIP() << "the main stack has no small limit here";
    EXPECT_EQ(FaultCode([] { Recurse(0); }), 0xC00000FDu);
    EXPECT_EQ(FaultCode([] { WriteAt(0); }), 0xC0000005u);
}

TEST(FailureFaultTest, TranslatorAndTexts)
{
    try {
        TsSETranslator(0xC0000094u, nullptr);
        FAIL() << "no exception";
    } catch (const TsSystemException& exception) {
        EXPECT_EQ(exception.GetCode(), 0xC0000094u);
        EXPECT_EQ(std::string(exception.Why()), Text(13293) + Text(13306));
    }
    // A code outside the table has the unknown text alone.
    EXPECT_EQ(TsSystemException::GetText(0xE06D7363u), Text(13316));
    EXPECT_FALSE(Text(13316).empty());
    // Every listed code has a text of its own.
    for (unsigned int id = 13294; id <= 13315; ++id)
        EXPECT_TRUE(LanguageString::Has(id)) << id;
    // A TsSystemException is an Exception for every handler that knows only those.
    EXPECT_THROW(TsSETranslator(0xC0000005u, nullptr), Exception);
}

TEST(FailureFaultTest, ErrorTexts)
{
    const std::string text = CExceptionHelper::GetErrorText(2);
    ASSERT_GT(text.size(), 4u);
    EXPECT_EQ(text.substr(text.size() - 4), " (2)");
    // The system's own text, trimmed, before the tail.
    EXPECT_NE(text.rfind("Unknown error.", 0), 0u);
    EXPECT_NE(text[text.size() - 5], ' ');
    EXPECT_EQ(CExceptionHelper::GetErrorText(987654), "Unknown error. (987654)");

    const Exception padded("Disk full. \n\t ");
    EXPECT_EQ(CExceptionHelper::GetErrorMessage(&padded), "Disk full.");
    const Exception empty("  \n");
    EXPECT_EQ(CExceptionHelper::GetErrorMessage(&empty), "Unknown error");
    const std::runtime_error standard("bad value\n");
    EXPECT_EQ(CExceptionHelper::GetErrorMessage(&standard), "bad value");
    EXPECT_EQ(CExceptionHelper::GetErrorMessage(static_cast<const std::exception*>(nullptr)), "Unknown error");
}

} // namespace
