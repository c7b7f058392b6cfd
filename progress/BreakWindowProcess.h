#pragma once
/// \class BreakWindowProcess
/// The break window in a companion process (the program "breakwin"). A Qt
/// process has one GUI thread, and that thread is busy in the computation while
/// the stop button must still work; so the window runs in a process of its own,
/// whose event loop nothing blocks.
///
/// Create() starts the companion at the first need with two SOCK_SEQPACKET
/// socketpairs, our ends close-on-exec (no other child of this process may hold
/// them, or the companion would outlive us): the command socket, the
/// companion's end handed to it as descriptor 3, and the report socket, as
/// descriptor 4. It is "breakwin" beside the executable, or the program that
/// the environment variable KORVA_BREAKWIN names. The companion sends "ready"
/// when its window exists; Create() waits for that up to kReadyTimeout and is
/// false when the companion cannot start (missing program, no display: it exits).
///
/// Every protocol message is one record (BreakWire) and a synchronous round
/// trip: the calling thread writes it on the command socket and reads the
/// acknowledgement there itself, so that a round trip costs no more than the
/// two processes' own turns. A connection thread of ours reads the report
/// socket: "stop confirmed", upon which it sets the client's breakPressed, as
/// the break window thread would, and the gauge's width. An acknowledgement
/// counts the reports written before it, and the call returns only when those
/// were handled here: a stop confirmed while a message was on its way is seen
/// when that message returns.
///
/// A companion that dies (killed, crashed, socket closed) or does not
/// acknowledge within kAcknowledgeTimeout is given up: it is killed if still
/// there and reaped, IsWindow() becomes false and every call returns at once,
/// so Progress goes on without a window. The next Create() starts a new one.
/// The companion lives to the end of this process otherwise and ends by itself
/// when its sockets close. Main thread only.

#include <KORVAutlwin/progress/BreakWindowChannel.h>
#include <KORVAutlwin/progress/BreakWire.h>

#include <sys/types.h>

#include <memory>
#include <string>

namespace korva { class BreakConnection; }

class BreakWindowProcess : public BreakWindowChannel
{
public:
    /// How long Create() waits for the companion's "ready", in milliseconds.
    static constexpr int kReadyTimeout = 10000;
    /// How long a message waits for its acknowledgement before the companion is given up.
    static constexpr int kAcknowledgeTimeout = 5000;

    BreakWindowProcess();
    /// Closes the connection; the companion ends by itself and is reaped here.
    ~BreakWindowProcess() override;

    /// Starts the companion unless one is connected; see above.
    bool Create() override;
    /// Whether a companion is connected.
    bool IsWindow() const override;

    void Finish() override;
    void SpinStep() override;
    void SpinRest() override;
    void SetTitle(const char* title) override;
    void SetGaugeValue(float value) override;
    void SetGaugeRange(float low, float high) override;
    void ShowWindow(bool show) override;
    /// Sends a copy of the client's texts and switches (BreakStartInfo); the
    /// client is kept only for setting its breakPressed until Finish.
    void Start(unsigned int delay, Progress* client, const QRect& mainWindow) override;

    /// The companion's process id while one is connected, else 0.
    pid_t GetCompanionPid() const;
    /// Our end of the command socket while one is connected, else -1.
    int GetSocket() const;
    /// The companion's gauge width as last reported; 0 without a companion.
    int GetGaugeResolution() const override;
    /// For tests: the companion acts as if the user had confirmed the stop of
    /// the client it serves. True when it acknowledged.
    bool PressStopInCompanion();

    /// The companion program: $KORVA_BREAKWIN, else "breakwin" beside the executable.
    static std::string GetProgramPath();

private:
    // One round trip; false when the companion is gone or went during it.
    bool RoundTrip(BreakWire::Message message);
    void Disconnect();

    std::unique_ptr<korva::BreakConnection> mConnection;
};
