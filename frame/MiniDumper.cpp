#include <KORVAutlwin/frame/MiniDumper.h>

#include <KORVAutlwin/frame/FaultTranslation.h>
#include <KORVAutlwin/platform/FaultSignals.h>

#include <KORVAutl/Exception.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>

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

// Buffered output to a file descriptor, with no allocation.
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
        if (mError == 0)
            mError = korva::WriteToFile(mFd, mBuffer, mUsed);
        mUsed = 0;
    }
    int Error() const { return mError; }

private:
    int mFd;
    int mError = 0;
    std::size_t mUsed = 0;
    char mBuffer[4096];
};

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
    korva::RegisterValue registers[64];
    const std::size_t count = korva::ContextRegisters(context, registers, 64);
    for (std::size_t i = 0; i < count; ++i) {
        out.Text("  ");
        out.Text(registers[i].name);
        out.Char(' ');
        out.Hex(registers[i].value);
        out.Char('\n');
    }
    if (count == 0)
        out.Text("  (not recorded on this processor)\n");
}

// Writes the whole dump; the first error of a write, 0 when all went out.
int WriteDump(int fd, int signal, const siginfo_t* info, const void* context, unsigned int code,
              const char* exceptionText)
{
    gMapsSize = korva::ReadMemoryMap(gMaps, sizeof gMaps, gMapsTruncated);
    DumpWriter out(fd);
    out.Text("Crash dump\nprocess: ");
    out.Decimal(korva::CurrentProcessId());
    out.Text("\nthread: ");
    out.Decimal(korva::CurrentThreadId());
    char exe[4096];
    out.Text("\nexecutable: ");
    out.Bytes(exe, korva::ReadExecutablePath(exe, sizeof exe));
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
    if (const std::uintptr_t pc = korva::ContextProgramCounter(context)) {
        out.Text("program counter: ");
        out.Hex(pc);
        out.Char(' ');
        WriteModuleOffset(out, pc);
        out.Char('\n');
    }
    WriteRegisters(out, context);

    out.Text("backtrace:\n");
    void* frames[128];
    const int count = korva::Backtrace(frames, 128);
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
    const int fd = korva::CreateDumpFile(path.c_str());
    if (fd < 0) {
        failed(errno);
        return;
    }
    int error = WriteDump(fd, signal, info, context, code, exceptionText);
    const int closed = korva::CloseFile(fd);
    if (error == 0)
        error = closed;
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

// True for the thread that may write the dump. Another thread that crashes in
// the meantime waits for the end of the process; the same thread crashing again
// (a fault inside the dump) ends the process at once.
bool EnterCrash(int signal)
{
    const long self = korva::CurrentThreadId();
    long expected = 0;
    if (gCrashingThread.compare_exchange_strong(expected, self))
        return true;
    if (expected == self)
        korva::EndBySignal(signal);
    korva::WaitForEnd();
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
        Dump(SIGABRT, nullptr, korva::CaptureContext(), 0, text.c_str());
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
    // Not in the handler: the first backtrace loads the unwinder library.
    korva::PrepareBacktrace();
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
    EndBySignal(signal);
}

} // namespace korva
