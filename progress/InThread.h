#pragma once
/// \class InThread
/// A computation that runs on a thread of its own at the lowest priority, can be
/// stopped and started again, and tells a window when it has run to its end.
///
///   InThread sum([values](bool& stop) {
///       float total = 0;
///       for (float v : values) { if (InThread::StopRequested(stop)) break; total += v; }
///       return total;
///   }, window, kSumDoneEvent);
///   sum.Start();
///   ... in window's event(): if (event->type() == kSumDoneEvent) Show(sum.get());
///
/// The function receives the stop flag and must look at it often and return soon
/// after it is set. Read it through StopRequested (or std::atomic_ref), since the
/// flag is written by another thread.
///
/// When a run ends without having been stopped and `message` is not 0, an event
/// of type `message` is posted to `window`, so the window learns of the end on its
/// own thread. A stopped run posts nothing, and Stop removes a notice that is
/// still waiting, so no notice of a stopped run arrives after Stop. `window` must
/// live until the InThread has been stopped (its destructor stops it).
///
/// Priority: the thread lowers itself to nice 19 (setpriority for its own thread
/// id), the lowest priority of the normal scheduler. It keeps a small share of a
/// busy processor, so it never starves, but yields to everything else.
///
/// Failure: an exception thrown by the function (an empty function throws
/// Exception "call to empty boost::function") is caught on the thread, written
/// to the application log, and thrown again by get() on the caller's thread, at
/// every call until the next Start. The run counts as ended, and the notice is
/// posted as for a run that returned. The result stays as it was.
///
/// Copies share the computation. Copying takes the running thread away from the
/// source, so that only one InThread owns it; the source then neither waits for
/// it nor stops it. Start, Stop and get are for the owning thread only.

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

class QObject;

/// What an InThread and its copies share.
struct InThreadData
{
    QObject* window = nullptr;
    alignas(std::atomic_ref<bool>::required_alignment) bool stopRequested = false;
    std::function<float(bool&)> function;
    float result = 0.0f;
    int message = 0;

    /// What the last run threw, or null.
    std::exception_ptr error;
    /// Set by the thread when it has done with the function and its notice.
    std::atomic<bool> ended{false};
};

class InThread
{
public:
    /// Prepares the computation; does not start it. `message` is a QEvent type
    /// (from QEvent::registerEventType), 0 for no notice; `window` may be null
    /// when `message` is 0.
    InThread(std::function<float(bool&)> function, QObject* window, int message);
    /// Shares `other`'s data and takes its thread.
    InThread(InThread& other);
    /// Stops this object's own thread, then shares `other`'s data and takes its thread.
    InThread& operator=(InThread& other);
    /// Stops.
    virtual ~InThread();

    /// Stops a run in progress, clears the stop flag and starts a new run.
    void Start();
    /// If a run is in progress: sets the stop flag and waits for its end without
    /// limit. Then removes a waiting notice of this computation from `window`'s queue.
    void Stop();
    /// Waits for the end of the run without limit and returns the result; before
    /// any run, or after Stop, the stored result at once. Throws what the run's
    /// function threw (see above).
    float get();

    /// True while this object owns a thread that has not been waited for.
    bool HasThread() const { return static_cast<bool>(thread); }
    /// True while this object owns a thread whose run has not ended; once it
    /// is false, the notice of the run (if any) is in the window's queue.
    bool IsRunning() const { return thread && !data->ended.load(); }

    /// Reads the stop flag that the function receives, safely against the
    /// thread that sets it.
    static bool StopRequested(bool& flag);

    /// The nice value of the computing thread.
    static constexpr int kThreadNice = 19;
    /// The text of the error of an empty function.
    static constexpr const char* kEmptyFunctionText = "call to empty boost::function";

private:
    static void Run(std::shared_ptr<InThreadData> data);
    void Wait();

    std::shared_ptr<InThreadData> data;
    std::unique_ptr<std::thread> thread;
};
