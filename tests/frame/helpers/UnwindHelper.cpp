// The helper's modes for going on after a fault in guarded event dispatch: a button whose handler (a lambda connected
// without a context object) faults while it holds locks, clicked again and again, each fault answered "go on" in the
// internal error dialog; then the window with the button is deleted. What it saw goes to <folder>/report as
// "name value" lines; the process ends normally only if nothing crashed on the way.

#include <KORVAutlwin/frame/GuardedApplication.h>

#include <QtTest>
#include <QtWidgets>

#include <atomic>
#include <fstream>
#include <mutex>
#include <string>

#include <malloc.h>
#include <signal.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/allocator_interface.h>
#endif

namespace {

std::mutex gOuterLock;
std::mutex gInnerLock;
std::atomic<int> gAlive{0};
// Read at run time, so that the compiler sees no null write to leave out.
volatile int* volatile gNowhere = reinterpret_cast<volatile int*>(std::uintptr_t{0x30});

struct Counted
{
    Counted() { ++gAlive; }
    ~Counted() { --gAlive; }
};

[[gnu::noinline]] void FaultWhileHolding()
{
    std::lock_guard<std::mutex> lock(gInnerLock);
    [[maybe_unused]] Counted counted;
    *gNowhere = 1;
}

// A throw cannot leave a noexcept function: the fault jumps back to the guard instead.
[[gnu::noinline]] void FaultInNoexcept() noexcept
{
    std::string text(40, 'x');
    *gNowhere = static_cast<int>(text.size());
}

[[gnu::noinline]] int Recurse(int depth)
{
    volatile char block[512];
    block[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : Recurse(depth + 1) + block[0];
}

std::size_t HeapInUse()
{
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

bool Released(std::mutex& mutex)
{
    if (!mutex.try_lock())
        return false;
    mutex.unlock();
    return true;
}

bool FaultSignalsOpen()
{
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return !sigismember(&mask, SIGSEGV) && !sigismember(&mask, SIGFPE);
}

// Answers each internal error dialog with "go on" (Cancel), as a user would click it; counts them.
struct GoOn
{
    int answered = 0;
    QString lastText;

    void Arm()
    {
        QTimer::singleShot(5, [this] {
            auto* wizard = qobject_cast<QWizard*>(QApplication::activeModalWidget());
            if (!wizard || !wizard->isVisible())
                return Arm();
            if (auto* text = wizard->findChild<QPlainTextEdit*>())
                lastText = text->toPlainText();
            ++answered;
            QTest::mouseClick(wizard->button(QWizard::CancelButton), Qt::LeftButton);
        });
    }
};

} // namespace

int RunUnwindMode(const std::string& mode, int argc, char** argv, const std::string& folder)
{
    if (mode != "unwind-lambda" && mode != "unwind-jump")
        return -1;
    korva::GuardedApplication app(argc, argv);
    std::ofstream report(folder + "/report");
    GoOn goOn;
    auto* window = new QWidget;
    auto* button = new QPushButton("Fault", window);
    window->show();

    if (mode == "unwind-jump") {
        // Faults that cannot be unwound jump back to the guard; the next fault unwinds again.
        QObject::connect(button, &QPushButton::clicked, [] { Recurse(0); });
        goOn.Arm();
        QTest::mouseClick(button, Qt::LeftButton);
        report << "overflow " << goOn.lastText.toStdString() << "\n";
        auto* noexceptButton = new QPushButton("Fault", window);
        noexceptButton->show();
        QObject::connect(noexceptButton, &QPushButton::clicked, [] { FaultInNoexcept(); });
        goOn.Arm();
        QTest::mouseClick(noexceptButton, Qt::LeftButton);
        auto* second = new QPushButton("Fault", window);
        second->show();
        QObject::connect(second, &QPushButton::clicked, [] { FaultWhileHolding(); });
        goOn.Arm();
        QTest::mouseClick(second, Qt::LeftButton);
        report << "answered " << goOn.answered << "\nreleased " << (Released(gInnerLock) && gAlive == 0) << "\n";
        report.close();
        return 0;
    }

    QObject::connect(button, &QPushButton::clicked, [] {
        std::lock_guard<std::mutex> lock(gOuterLock);
        Counted counted;
        FaultWhileHolding();
    });
    constexpr int kRounds = 101;
    int released = 0, open = 0;
    std::size_t heapAt20 = 0, heapAt100 = 0;
    for (int round = 1; round <= kRounds; ++round) {
        goOn.Arm();
        QTest::mouseClick(button, Qt::LeftButton);
        released += Released(gOuterLock) && Released(gInnerLock) && gAlive == 0;
        open += FaultSignalsOpen();
        if (round == 20)
            heapAt20 = HeapInUse();
        if (round == 100)
            heapAt100 = HeapInUse();
    }
    report << "answered " << goOn.answered << "\nreleased " << released << "\nopen " << open << "\ntext "
           << goOn.lastText.toStdString() << "\ngrowth " << (static_cast<long long>(heapAt100) - static_cast<long long>(heapAt20)) / 80
           << "\n";
    report.flush();
    // The button's window goes, and with it the button whose emission faulted.
    delete window;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    report << "deleted 1\n";
    report.close();
    return 0;
}
