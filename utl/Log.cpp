#include <KORVAutl/Log.h>

#include <KORVAutlwin/platform/UserIdentity.h>

#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsSystemInfo.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace {

std::mutex gMutex;
std::shared_ptr<spdlog::logger> gLogger;
std::string gPath;
std::atomic<int> gMinimum{0};

std::string DefaultPath()
{
    std::string base = korva::UserConfigFolder();
    if (base.empty())
        base = "/tmp/.config";
    const std::string name = TsSystemInfo::GetApplicationName();
    std::string folder = TsPathAppend(TsPathAppend(base.c_str(), "Tessmark").c_str(), name.c_str());
    folder = TsPathAppend(folder.c_str(), TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort).c_str());
    return TsPathAppend(folder.c_str(), (name + ".log").c_str());
}

// The logger for the current path, made on first use. Called with gMutex held.
spdlog::logger& Logger()
{
    if (gLogger)
        return *gLogger;
    if (gPath.empty())
        gPath = DefaultPath();
    try {
        CreateFolder(TsGetDirectory(gPath.c_str()).c_str());
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(gPath, false);
        gLogger = std::make_shared<spdlog::logger>("KORVAutl", std::move(sink));
    } catch (const spdlog::spdlog_ex&) {
        gLogger = std::make_shared<spdlog::logger>("KORVAutl", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    }
    gLogger->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
    gLogger->set_level(spdlog::level::trace);
    return *gLogger;
}

std::string OneLine(const char* text)
{
    std::string line;
    for (const char* p = text ? text : ""; *p; ++p) {
        if (*p == '\n')
            line += "\\n";
        else if (*p != '\r')
            line += *p;
    }
    return line;
}

} // namespace

void Log::WriteMessage(const char* className, const char* function, const char* text, Importance importance,
                       bool force)
{
    if (!force && importance < gMinimum.load(std::memory_order_relaxed))
        return;
    try {
        const std::string line = fmt::format("[{}] {}:{} {}::{}: {}", static_cast<int>(importance), getpid(),
                                             static_cast<long>(syscall(SYS_gettid)), className ? className : "",
                                             function ? function : "", OneLine(text));
        std::lock_guard<std::mutex> lock(gMutex);
        spdlog::logger& logger = Logger();
        logger.info(line);
        if (force || importance >= eSystemCallFailed)
            logger.flush();
    } catch (...) {
        // Logging must never take the caller down.
    }
}

void Log::SetLogFile(const char* path)
{
    std::lock_guard<std::mutex> lock(gMutex);
    if (gLogger)
        gLogger->flush();
    gLogger.reset();
    gPath = path ? path : "";
}

std::string Log::GetLogFile()
{
    std::lock_guard<std::mutex> lock(gMutex);
    return gPath.empty() ? DefaultPath() : gPath;
}

void Log::SetMinimumImportance(int importance)
{
    gMinimum.store(importance, std::memory_order_relaxed);
}

void Log::Flush()
{
    std::lock_guard<std::mutex> lock(gMutex);
    if (gLogger)
        gLogger->flush();
}
