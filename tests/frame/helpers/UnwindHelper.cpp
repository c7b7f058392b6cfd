// Modes of the helper for going on after faults in event dispatch: buttons whose handlers (lambdas connected without
// a context object) fault, each fault answered "go on"; what it saw goes to <folder>/report as "name value" lines.

#include <KORVAutlwin/frame/GuardedApplication.h>

#include <QtTest>
#include <QtWidgets>

#include <cfenv>
#include <fstream>
#include <mutex>

#include <malloc.h>
#include <signal.h>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
// The sanitizer's own count: its allocator is not malloc's.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

std::mutex gOuterLock, gInnerLock;
int gAlive = 0;
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

// A throw cannot leave a noexcept function: this fault jumps back to the guard.
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

bool Released()
{
    const bool outer = gOuterLock.try_lock(), inner = gInnerLock.try_lock();
    if (outer)
        gOuterLock.unlock();
    if (inner)
        gInnerLock.unlock();
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return outer && inner && gAlive == 0 && !sigismember(&mask, SIGSEGV) && fegetround() == FE_UPWARD;
}

std::string gText;

// Clicks `button` as a user would, and "go on" in the internal error dialog that follows.
void ClickAndGoOn(QPushButton* button)
{
    std::function<void()> answer = [&answer] {
        auto* wizard = qobject_cast<QWizard*>(QApplication::activeModalWidget());
        if (!wizard)
            return QTimer::singleShot(5, answer);
        gText = wizard->findChild<QPlainTextEdit*>()->toPlainText().toStdString();
        QTest::mouseClick(wizard->button(QWizard::CancelButton), Qt::LeftButton);
    };
    QTimer::singleShot(5, answer);
    gText.clear();
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace

int RunUnwindMode(const std::string& mode, int argc, char** argv, const std::string& folder)
{
    if (mode != "unwind-lambda" && mode != "unwind-jump")
        return -1;
    korva::GuardedApplication app(argc, argv);
    std::ofstream report(folder + "/report");
    auto* window = new QWidget;
    const auto button = [window](std::function<void()> handler) {
        auto* button = new QPushButton("Fault", window);
        QObject::connect(button, &QPushButton::clicked, handler);
        button->show();
        return button;
    };
    window->show();
    // The program's own rounding must outlive the faults.
    fesetround(FE_UPWARD);
#if defined(__SANITIZE_ADDRESS__)
    // Qt Widgets is built without exceptions: an unwind crosses its frames without their cleanups, which keeps
    // the copy of the mouse event that QApplication::notify made (some 260 bytes a fault). The growth per
    // round is measured below instead.
    __lsan_disable();
#endif
    if (mode == "unwind-jump") {
        ClickAndGoOn(button([] { Recurse(0); }));
        report << "overflow " << gText << "\n";
        ClickAndGoOn(button([] { FaultInNoexcept(); }));
        report << "noexcept " << gText << "\n";
    }
    QPushButton* faulting = button([] {
        std::lock_guard<std::mutex> lock(gOuterLock);
        [[maybe_unused]] Counted counted;
        FaultWhileHolding();
    });
    int released = 0;
    long long heap[2] = {};
    for (int round = 1; round <= (mode == "unwind-lambda" ? 101 : 1); ++round) {
        ClickAndGoOn(faulting);
        released += Released() && !gText.empty();
        if (round == 21 || round == 101)
#if defined(__SANITIZE_ADDRESS__)
            heap[round / 100] = static_cast<long long>(__sanitizer_get_current_allocated_bytes());
#else
            heap[round / 100] = static_cast<long long>(mallinfo2().uordblks);
#endif
    }
#if defined(__SANITIZE_ADDRESS__)
    __lsan_enable();
#endif
    report << "released " << released << "\ntext " << gText << "\ngrowth " << (heap[1] - heap[0]) / 80 << "\n";
    // What the jumps skipped is in doubt: only unwound emissions may meet the deletion of their buttons.
    if (mode == "unwind-jump")
        return 0;
    delete window;
    QCoreApplication::processEvents();
    report << "deleted 1\n";
    return 0;
}
