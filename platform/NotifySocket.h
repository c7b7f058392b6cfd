#pragma once
/// \class korva::NotifySocket
/// The service manager's notify protocol: newline-separated "NAME=value"
/// assignments sent as one datagram to the socket named by $NOTIFY_SOCKET.

#include <string>

namespace korva {

class NotifySocket
{
public:
    /// Whether a manager started this process and listens: $NOTIFY_SOCKET is set.
    static bool IsAvailable();
    /// Sends `state` ("READY=1\nSTATUS=..."). 0 when it went out, else the errno:
    /// ENOENT without $NOTIFY_SOCKET, EINVAL for an empty state, else what the socket said.
    static int Send(const std::string& state);
};

} // namespace korva
