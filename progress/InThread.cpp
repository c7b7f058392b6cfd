#include <KORVAutlwin/progress/InThread.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/Log.h>

#include <QCoreApplication>
#include <QEvent>

#include <string>

#include <sys/resource.h>
#include <unistd.h>

InThread::InThread(std::function<float(bool&)> function, QObject* window, int message)
    : data(std::make_shared<InThreadData>())
{
    data->window = window;
    data->function = std::move(function);
    data->message = message;
}

InThread::InThread(InThread& other) : data(other.data), thread(std::move(other.thread)) {}

InThread& InThread::operator=(InThread& other)
{
    if (this != &other) {
        // Our own run must not be left without an owner.
        Stop();
        data = other.data;
        thread = std::move(other.thread);
    }
    return *this;
}

InThread::~InThread()
{
    Stop();
}

bool InThread::StopRequested(bool& flag)
{
    return std::atomic_ref<bool>(flag).load(std::memory_order_relaxed);
}

void InThread::Start()
{
    Stop();
    std::atomic_ref<bool>(data->stopRequested).store(false);
    data->error = nullptr;
    data->ended.store(false);
    thread = std::make_unique<std::thread>(Run, data);
}

void InThread::Stop()
{
    if (thread && !data->ended.load())
        std::atomic_ref<bool>(data->stopRequested).store(true);
    if (!thread)
        return;
    Wait();
    // A notice posted just before the stop flag was seen must not arrive now.
    if (data->message != 0 && data->window)
        QCoreApplication::removePostedEvents(data->window, data->message);
}

float InThread::get()
{
    if (thread)
        Wait();
    if (data->error)
        std::rethrow_exception(data->error);
    return data->result;
}

void InThread::Wait()
{
    if (thread->joinable())
        thread->join();
    thread.reset();
}

void InThread::Run(std::shared_ptr<InThreadData> data)
{
    // Lowest priority of the normal scheduler, for this thread only; raising
    // one's own nice value never fails for want of rights.
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kThreadNice);

    try {
        if (!data->function)
            throw Exception(kEmptyFunctionText);
        data->result = data->function(data->stopRequested);
    } catch (...) {
        data->error = std::current_exception();
        std::string text = "The computation failed: ";
        try {
            throw;
        } catch (const Exception& exception) {
            text += exception.RecursiveWhy();
        } catch (const std::exception& exception) {
            text += exception.what();
        } catch (...) {
            text += "unknown exception";
        }
        Log::WriteMessage("InThread", "Run", text.c_str(), Log::eLogicFailure);
    }
    if (!std::atomic_ref<bool>(data->stopRequested).load() && data->message != 0 && data->window)
        QCoreApplication::postEvent(data->window, new QEvent(static_cast<QEvent::Type>(data->message)));
    // Last: whoever sees the run ended may rely on the notice being in the queue.
    data->ended.store(true);
}
