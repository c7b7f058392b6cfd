#pragma once
// Runs a function on a worker thread while the calling thread shows a modal
// ProgressDialog, and returns when the function has returned.
//
//   ExecuteWithProgress([&] { ExportAll(files); }, "Exporting", mainWindow);
//
//   std::atomic<bool> stop{false};
//   ExecuteWithProgress([&] { for (auto& f : files) { if (stop) break; Export(f); } },
//                       [&] { stop = true; }, "Exporting", mainWindow);
//
// Call it on the GUI thread. The work must not touch widgets (widgets live on
// the GUI thread only); it may post to them. The user cannot close the dialog
// while the work runs; with a cancel function, the dialog's cancel button calls
// it on the GUI thread, and it is up to the cancel function to make the work end.
//
// Failure of the work is thrown here, on the calling thread, after the dialog
// has closed: an Exception (or a class derived from it) as a new Exception with
// the same text (its causes are not carried over), anything else as
// ProgressInfo::UnknownException. Cancellation is not a failure.

#include <KORVAutl/Exception.h>

#include <functional>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>

class ProgressDialog;
class QWidget;

/// The state of one ExecuteWithProgress call, shared by the calling thread and
/// the worker.
struct ProgressInfo
{
    /// What the call throws when the work threw something other than an Exception.
    class UnknownException : public Exception
    {
    public:
        UnknownException();
    };

    enum EErrorState
    {
        eNoError = 0,
        eException = 1,    // an Exception; its text is in errorText
        eUnknownError = 2  // anything else
    };

    ProgressInfo();
    ~ProgressInfo();
    ProgressInfo(const ProgressInfo&) = delete;
    ProgressInfo& operator=(const ProgressInfo&) = delete;

    const std::function<void()>* work = nullptr;
    /// Released by the dialog when it is up: until then the worker must not close it.
    std::binary_semaphore dialogReady{0};
    std::unique_ptr<ProgressDialog> dialog;
    std::unique_ptr<std::thread> thread;
    int errorState = eNoError;
    std::string errorText;
};

/// Runs `work` on a worker thread behind a modal progress dialog titled `title`
/// (null or empty: the application's name), without a cancel button.
void ExecuteWithProgress(const std::function<void()>& work, const char* title, QWidget* parent);

/// The same, with a cancel button that calls `cancel` (an empty `cancel`: no button).
void ExecuteWithProgress(const std::function<void()>& work, const std::function<void()>& cancel, const char* title,
                         QWidget* parent);
