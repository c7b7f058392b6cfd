#include <KORVAutlwin/frame/MiniDumper.h>

#include <KORVAutlwin/frame/FaultTranslation.h>

#include <KORVAutl/Exception.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace {

struct Callbacks
{
    MiniDumper::DumpPathFunction dumpPath;
    MiniDumper::DumpedFunction onDumped;
    MiniDumper::FailedFunction onFailed;
};

std::atomic<Callbacks*> gCallbacks{nullptr};
std::terminate_handler gPreviousTerminate = nullptr;
// The thread that is writing a crash dump; 0 while nobody is.
std::atomic<long> gCrashingThread{0};

// The memory map, read at the time of the crash. Static, so that the handler
// needs neither the heap nor much of its small stack.
char gMaps[1024 * 1024];
std::size_t gMapsSize = 0;
bool gMapsTruncated = false;

long ThreadId()
{
    return static_cast<long>(syscall(SYS_gettid));
}

// Buffered output to a file descriptor with nothing but write(2).
class DumpWriter
{
public:
    explicit DumpWriter(int fd) : mFd(fd) {}

    void Text(const char* text) { Bytes(text, std::strlen(text)); }
    void Bytes(const char* data, std::size_t size)
    {
        while (size > 0) {
            if (mUsed == sizeof(mBuffer))
                Flush();
            const std::size_t room = sizeof(mBuffer) - mUsed;
            const std::size_t part = size < room ? size : room;
            std::memcpy(mBuffer + mUsed, data, part);
            mUsed += part;
            data += part;
            size -= part;
        }
    }
    void Char(char c) { Bytes(&c, 1); }
    void Hex(std::uintptr_t value, int digits = 16)
    {
        char text[2 + 2 * sizeof(value)];
        int length = 0;
        text[length++] = '0';
        text[length++] = 'x';
        for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
            text[length++] = "0123456789abcdef"[(value >> shift) & 0xF];
        Bytes(text, static_cast<std::size_t>(length));
    }
    void ShortHex(std::uintptr_t value)
    {
        int digits = 1;
        while (digits < 16 && (value >> (digits * 4)) != 0)
            ++digits;
        Hex(value, digits);
    }
    void Decimal(long long value)
    {
        char text[24];
        int length = 0;
        unsigned long long magnitude = value < 0 ? 0ULL - static_cast<unsigned long long>(value)
                                                 : static_cast<unsigned long long>(value);
        do {
            text[length++] = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (value < 0)
            text[length++] = '-';
        while (length > 0)
            Char(text[--length]);
    }
    void Line(const char* label, const char* text)
    {
        Text(label);
        Text(text);
        Char('\n');
    }

    void Flush()
    {
        std::size_t done = 0;
        while (done < mUsed && mError == 0) {
            const ssize_t written = write(mFd, mBuffer + done, mUsed - done);
            if (written < 0) {
                if (errno == EINTR)
                    continue;
                mError = errno;
            } else {
                done += static_cast<std::size_t>(written);
            }
        }
        mUsed = 0;
    }
    int Error() const { return mError; }

private:
    int mFd;
    int mError = 0;
    std::size_t mUsed = 0;
    char mBuffer[4096];
};

void ReadMaps()
{
    gMapsSize = 0;
    gMapsTruncated = false;
    const int fd = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return;
    for (;;) {
        if (gMapsSize == sizeof(gMaps)) {
            char probe;
            gMapsTruncated = read(fd, &probe, 1) > 0;
            break;
        }
        const ssize_t got = read(fd, gMaps + gMapsSize, sizeof(gMaps) - gMapsSize);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        gMapsSize += static_cast<std::size_t>(got);
    }
    close(fd);
}

// Reads a hexadecimal number at `*cursor` and moves past it.
std::uintptr_t ParseHex(const char*& cursor, const char* end)
{
    std::uintptr_t value = 0;
    for (; cursor < end; ++cursor) {
        const char c = *cursor;
        int digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else
            break;
        value = value * 16 + static_cast<std::uintptr_t>(digit);
    }
    return value;
}

// Moves past the blanks and the next field of a line of the memory map.
void SkipField(const char*& cursor, const char* end)
{
    while (cursor < end && *cursor == ' ')
        ++cursor;
    while (cursor < end && *cursor != ' ')
        ++cursor;
}

// Writes `address` as module path + offset into the module's file, by the
// mapping of the memory map that holds it.
void WriteModuleOffset(DumpWriter& out, std::uintptr_t address)
{
    const char* line = gMaps;
    const char* const mapsEnd = gMaps + gMapsSize;
    while (line < mapsEnd) {
        const char* lineEnd = static_cast<const char*>(std::memchr(line, '\n', static_cast<std::size_t>(mapsEnd - line)));
        if (!lineEnd)
            lineEnd = mapsEnd;
        // start-end perms offset dev inode path
        const char* cursor = line;
        const std::uintptr_t start = ParseHex(cursor, lineEnd);
        ++cursor;
        const std::uintptr_t end = ParseHex(cursor, lineEnd);
        if (address >= start && address < end) {
            SkipField(cursor, lineEnd); // permissions
            while (cursor < lineEnd && *cursor == ' ')
                ++cursor;
            const std::uintptr_t offset = ParseHex(cursor, lineEnd);
            // device and inode, then the path, which may be missing.
            SkipField(cursor, lineEnd);
            SkipField(cursor, lineEnd);
            while (cursor < lineEnd && *cursor == ' ')
                ++cursor;
            if (cursor < lineEnd)
                out.Bytes(cursor, static_cast<std::size_t>(lineEnd - cursor));
            else
                out.Text("[anonymous]");
            out.Char('+');
            out.ShortHex(address - start + offset);
            return;
        }
        line = lineEnd + 1;
    }
    out.Text("?");
}

const char* SignalName(int signal)
{
    switch (signal) {
    case SIGSEGV: return "SIGSEGV";
    case SIGBUS: return "SIGBUS";
    case SIGFPE: return "SIGFPE";
    case SIGILL: return "SIGILL";
    case SIGTRAP: return "SIGTRAP";
    case SIGABRT: return "SIGABRT";
    default: return "signal";
    }
}

void WriteRegisters(DumpWriter& out, const void* context)
{
    out.Text("registers:\n");
    if (!context) {
        out.Text("  (none)\n");
        return;
    }
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    static const char* const names[NGREG] = {"r8",  "r9",  "r10", "r11", "r12",    "r13",    "r14",    "r15",
                                             "rdi", "rsi", "rbp", "rbx", "rdx",    "rax",    "rcx",    "rsp",
                                             "rip", "efl", "csgsfs", "err", "trapno", "oldmask", "cr2"};
    for (int i = 0; i < NGREG; ++i) {
        out.Text("  ");
        out.Text(names[i]);
        out.Char(' ');
        out.Hex(static_cast<std::uintptr_t>(uc->uc_mcontext.gregs[i]));
        out.Char('\n');
    }
#elif defined(__aarch64__)
    for (int i = 0; i < 31; ++i) {
        out.Text("  x");
        out.Decimal(i);
        out.Char(' ');
        out.Hex(uc->uc_mcontext.regs[i]);
        out.Char('\n');
    }
    out.Text("  sp ");
    out.Hex(uc->uc_mcontext.sp);
    out.Text("\n  pc ");
    out.Hex(uc->uc_mcontext.pc);
    out.Text("\n  pstate ");
    out.Hex(uc->uc_mcontext.pstate);
    out.Char('\n');
#else
    (void)uc;
    out.Text("  (not recorded on this processor)\n");
#endif
}

std::uintptr_t ProgramCounter(const void* context)
{
    if (!context)
        return 0;
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    return static_cast<std::uintptr_t>(uc->uc_mcontext.gregs[REG_RIP]);
#elif defined(__aarch64__)
    return static_cast<std::uintptr_t>(uc->uc_mcontext.pc);
#else
    (void)uc;
    return 0;
#endif
}

// Writes the whole dump; the first error of a write, 0 when all went out.
int WriteDump(int fd, int signal, const siginfo_t* info, const void* context, unsigned int code,
              const char* exceptionText)
{
    ReadMaps();
    DumpWriter out(fd);
    out.Text("Crash dump\nprocess: ");
    out.Decimal(getpid());
    out.Text("\nthread: ");
    out.Decimal(ThreadId());
    char exe[4096];
    const ssize_t exeLength = readlink("/proc/self/exe", exe, sizeof(exe) - 1);
    out.Text("\nexecutable: ");
    if (exeLength > 0)
        out.Bytes(exe, static_cast<std::size_t>(exeLength));
    out.Char('\n');
    if (exceptionText) {
        out.Line("exception: ", exceptionText);
    } else {
        out.Text("signal: ");
        out.Decimal(signal);
        out.Char(' ');
        out.Text(SignalName(signal));
        out.Text("\nsignal code: ");
        out.Decimal(info ? info->si_code : 0);
        out.Text("\ncode: ");
        out.Hex(code, 8);
        out.Text("\nfault address: ");
        out.Hex(info ? reinterpret_cast<std::uintptr_t>(info->si_addr) : 0);
        out.Char('\n');
    }
    if (const std::uintptr_t pc = ProgramCounter(context)) {
        out.Text("program counter: ");
        out.Hex(pc);
        out.Char(' ');
        WriteModuleOffset(out, pc);
        out.Char('\n');
    }
    WriteRegisters(out, context);

    out.Text("backtrace:\n");
    void* frames[128];
    const int count = backtrace(frames, 128);
    for (int i = 0; i < count; ++i) {
        out.Text("  #");
        out.Decimal(i);
        out.Char(' ');
        const auto address = reinterpret_cast<std::uintptr_t>(frames[i]);
        out.Hex(address);
        out.Char(' ');
        WriteModuleOffset(out, address);
        out.Char('\n');
    }

    out.Text("memory map:\n");
    out.Bytes(gMaps, gMapsSize);
    if (gMapsTruncated)
        out.Text("(memory map truncated)\n");
    out.Text("end of dump\n");
    out.Flush();
    return out.Error();
}

// Runs the dump with the application's functions. Exceptions from them end here:
// nothing may leave a signal handler.
void Dump(int signal, const siginfo_t* info, const void* context, unsigned int code, const char* exceptionText)
{
    Callbacks* callbacks = gCallbacks.load();
    if (!callbacks || !callbacks->dumpPath)
        return;
    std::string path;
    try {
        path = callbacks->dumpPath();
    } catch (...) {
        return;
    }
    if (path.empty())
        return;
    const auto failed = [&](int error) {
        if (callbacks->onFailed) {
            try {
                callbacks->onFailed(path.c_str(), static_cast<unsigned long>(error));
            } catch (...) {
            }
        }
    };
    int fd;
    do
        fd = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        failed(errno);
        return;
    }
    int error = WriteDump(fd, signal, info, context, code, exceptionText);
    if (close(fd) != 0 && error == 0 && errno != EINTR)
        error = errno;
    if (error != 0) {
        failed(error);
        return;
    }
    if (callbacks->onDumped) {
        try {
            callbacks->onDumped(path.c_str());
        } catch (...) {
        }
    }
}

[[noreturn]] void DieBySignal(int signal)
{
    struct sigaction action{};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
    _exit(128 + signal);
}

// True for the thread that may write the dump. Another thread that crashes in
// the meantime waits for the end of the process; the same thread crashing again
// (a fault inside the dump) ends the process at once.
bool EnterCrash(int signal)
{
    const long self = ThreadId();
    long expected = 0;
    if (gCrashingThread.compare_exchange_strong(expected, self))
        return true;
    if (expected == self)
        DieBySignal(signal);
    for (;;)
        pause();
}

void OnTerminate()
{
    std::string text = "unknown exception";
    if (std::exception_ptr current = std::current_exception()) {
        try {
            std::rethrow_exception(current);
        } catch (const Exception& exception) {
            text = exception.RecursiveWhy();
        } catch (const std::exception& exception) {
            text = exception.what();
        } catch (...) {
        }
    } else {
        text = "terminate called without an active exception";
    }
    if (EnterCrash(SIGABRT)) {
        ucontext_t context;
        const bool haveContext = getcontext(&context) == 0;
        Dump(SIGABRT, nullptr, haveContext ? &context : nullptr, 0, text.c_str());
    }
    // The previous handler reports the exception on stderr and aborts.
    if (gPreviousTerminate)
        gPreviousTerminate();
    std::abort();
}

} // namespace

void MiniDumper::Initialize(DumpPathFunction dumpPath, DumpedFunction onDumped, FailedFunction onFailed)
{
    static std::mutex mutex;
    std::lock_guard<std::mutex> lock(mutex);
    if (gCallbacks.load())
        return;
    // The first backtrace loads the unwinder library; do that now, not in the handler.
    void* frames[2];
    backtrace(frames, 2);
    korva::PrepareFaultHandling();
    gCallbacks.store(new Callbacks{std::move(dumpPath), std::move(onDumped), std::move(onFailed)});
    gPreviousTerminate = std::set_terminate(OnTerminate);
}

bool MiniDumper::IsInitialized()
{
    return gCallbacks.load() != nullptr;
}

namespace korva {

void HandleCrash(int signal, const siginfo_t* info, const void* context, unsigned int code)
{
    const int savedErrno = errno;
    if (EnterCrash(signal)) {
        errno = savedErrno;
        Dump(signal, info, context, code, nullptr);
    }
    DieBySignal(signal);
}

} // namespace korva
