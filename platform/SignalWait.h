#pragma once
/// \class korva::SignalWait
/// Signals taken as data: the signals given are blocked in the calling thread
/// (and in every thread it starts afterwards) and read from a signalfd, so that
/// a loop handles them one after another instead of in a handler.

#include <initializer_list>
#include <vector>

namespace korva {

class SignalWait
{
public:
    /// Blocks `signalList` in the calling thread and opens the descriptors.
    /// IsOpen() tells whether that worked; Error() gives the errno if not.
    explicit SignalWait(std::initializer_list<int> signalList);
    /// Takes the signals still pending, closes the descriptors and gives the
    /// calling thread its old mask back.
    ~SignalWait();
    SignalWait(const SignalWait&) = delete;
    SignalWait& operator=(const SignalWait&) = delete;

    bool IsOpen() const { return mSignalFd >= 0 && mWakeFd >= 0; }
    int Error() const { return mError; }

    /// Waits for one of the signals or for Wake(). The signal's number, 0 after
    /// Wake(), or -1 on an error (Error() then holds it).
    int Wait();
    /// Ends a Wait() on another thread, or the next one if none is waiting.
    void Wake();

private:
    std::vector<int> mSignals;
    int mSignalFd = -1;
    int mWakeFd = -1;
    int mError = 0;
    unsigned char mOldMask[128] = {};  // a sigset_t, kept opaque here
};

} // namespace korva
