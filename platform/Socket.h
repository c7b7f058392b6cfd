#pragma once
/// \class korva::Socket
/// IPv4 sockets for the few clients of the library that talk to a daemon: make a
/// socket, find the peer's address, connect, send, close. Descriptors are made
/// close-on-exec, so that child processes do not keep a connection open.
///
/// A send never raises SIGPIPE: a peer that went away gives a failed send.

#include <cstddef>
#include <cstdint>

namespace korva {

class Socket
{
public:
    /// A socket handle; kInvalid (all bits set) is no socket.
    using Handle = int;
    static constexpr Handle kInvalid = -1;
    /// The address of no host, as a failed dotted-address parse gives it.
    static constexpr std::uint32_t kAddressNone = 0xFFFFFFFFu;

    enum EKind
    {
        eStream,   // AF_INET, SOCK_STREAM, protocol 0
        eDatagram  // AF_INET, SOCK_DGRAM, protocol 0
    };

    Socket() = delete;

    /// Starts and stops the socket library of the system; nothing to do here,
    /// so Startup is always true.
    static bool Startup();
    static void Cleanup();

    /// A new socket, or kInvalid.
    static Handle Open(EKind kind);
    /// True when the handle was closed.
    static bool Close(Handle socket);

    /// A dotted IPv4 address in network byte order; kAddressNone when the text
    /// is none (or is "255.255.255.255").
    static std::uint32_t ParseAddress(const char* text);
    /// The first IPv4 address of the host `name`, in network byte order; false
    /// when the name cannot be resolved.
    static bool ResolveHost(const char* name, std::uint32_t& address);
    /// Connects to `address` (network byte order) and `port`. A datagram socket
    /// is fixed to that peer, so that Send works on it.
    static bool Connect(Handle socket, std::uint32_t address, std::uint16_t port);
    /// Sends `size` bytes in one call with no flags, going on after an
    /// interruption as a blocking send does. The number of bytes sent, or -1.
    static long Send(Handle socket, const void* data, std::size_t size);
};

} // namespace korva
