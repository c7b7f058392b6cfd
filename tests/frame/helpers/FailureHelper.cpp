// korva_failure_helper <mode> <folder>: what the failure tests check ends a process, so it happens here: crashes that
// leave a dump, and the internal error dialog, whose Finish ends the program (and may start it again). The dump goes to
// <folder>/crash.dmp; onDumped writes <folder>/dumped (the path), onFailed <folder>/failed (path, a line feed, the
// error number).

#include <KORVAutlwin/frame/FaultTranslation.h>
#include <KORVAutlwin/frame/InternalErrorDialog.h>
#include <KORVAutlwin/frame/MiniDumper.h>
#include <KORVAutlwin/frame/TsSystemException.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/Log.h>

#include <QtTest>
#include <QtWidgets>

#include <cstdio>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

std::string gFolder;

// Markers are written from the crash handler: plain system calls only.
void WriteMarker(const char* name, const std::string& content)
{
    const int fd = open((gFolder + "/" + name).c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0644);
    if (fd >= 0 && write(fd, content.data(), content.size()) >= 0)
        close(fd);
}

void InitializeDumper(const std::string& dumpFile, const char* dumpedMarker = "dumped")
{
    MiniDumper::Initialize([dumpFile] { return dumpFile; },
                           [dumpedMarker](const char* path) { WriteMarker(dumpedMarker, path); },
                           [](const char* path, unsigned long error) {
                               WriteMarker("failed", std::string(path) + "\n" + std::to_string(error));
                           });
}

[[gnu::noinline]] void FaultAt(std::uintptr_t address)
{
    *reinterpret_cast<volatile int*>(address) = 1;
}

[[gnu::noinline]] int Recurse(int depth)
{
    volatile char block[512];
    block[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : Recurse(depth + 1) + block[0];
}

// A guard that a thrown exception and a translated fault have left: neither may
// leave a stale guard behind for the crash that follows.
void LeaveGuards()
{
    try {
        korva::RunWithFaultTranslation([] { throw Exception("passes through"); });
    } catch (const Exception&) {
    }
    try {
        korva::RunWithFaultTranslation([] { FaultAt(8); });
    } catch (const TsSystemException&) {
    }
}

int RunDialog(int argc, char** argv, bool restart)
{
    // The program started again by Finish: it only reports its arguments.
    if (access((gFolder + "/first").c_str(), F_OK) == 0) {
        std::string arguments;
        for (int i = 0; i < argc; ++i)
            arguments += std::string(argv[i]) + "\n";
        WriteMarker("restarted", arguments);
        return 0;
    }
    WriteMarker("first", std::to_string(getpid()));
    QApplication app(argc, argv);
    // Clicks as a user would give them, once the dialog is up.
    std::function<void()> drive = [&] {
        auto* wizard = qobject_cast<QWizard*>(QApplication::activeModalWidget());
        if (!wizard || !wizard->isVisible())
            return QTimer::singleShot(10, drive);
        for (QCheckBox* box : wizard->findChildren<QCheckBox*>())
            if (restart && box->property("ctrlId").toInt() == 13040)
                QTest::mouseClick(box, Qt::LeftButton);
        QTest::mouseClick(wizard->button(QWizard::FinishButton), Qt::LeftButton);
    };
    QTimer::singleShot(0, drive);
    ShowInternalErrorDialog("The helper met an error.");
    WriteMarker("returned", "");
    return 0;
}

} // namespace

int RunUnwindMode(const std::string& mode, int argc, char** argv, const std::string& folder);

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s <mode> <folder>\n", argv[0]);
        return 2;
    }
    const std::string mode = argv[1];
    gFolder = argv[2];
    Log::SetLogFile((gFolder + "/helper.log").c_str());
    // A crash here is expected: no core file.
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);

    if (mode == "dialog-restart" || mode == "dialog-finish")
        return RunDialog(argc, argv, mode == "dialog-restart");
    InitializeDumper(gFolder + (mode == "crash-unwritable" ? "/missing/crash.dmp" : "/crash.dmp"));
    InitializeDumper(gFolder + "/second.dmp", "dumped-second");   // changes nothing
    if (const int result = RunUnwindMode(mode, argc, argv, gFolder); result >= 0)
        return result;
    if (mode == "crash-main" || mode == "crash-unwritable") {
        LeaveGuards();
        FaultAt(0x10);
    } else if (mode == "crash-thread") {
        std::thread([] {
            LeaveGuards();
            FaultAt(0x20);
        }).join();
    } else if (mode == "crash-thread-under-guard") {
        // The main thread's guard is no guard of the worker's.
        korva::RunWithFaultTranslation([] { std::thread([] { FaultAt(0x20); }).join(); });
    } else if (mode == "overflow-main") {
        return Recurse(0);
    } else if (mode == "terminate") {
        std::thread([] { throw Exception("The helper gave up."); }).join();
    }
    std::fprintf(stderr, "unknown mode %s\n", mode.c_str());
    return 2;
}
