#include <KORVAutlwin/platform/Socket.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korva {

bool Socket::Startup()
{
    return true;
}

void Socket::Cleanup() {}

Socket::Handle Socket::Open(EKind kind)
{
    const int type = kind == eStream ? SOCK_STREAM : SOCK_DGRAM;
    const int fd = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
    return fd < 0 ? kInvalid : fd;
}

bool Socket::Close(Handle socket)
{
    // close() releases the descriptor even when interrupted: never retry it.
    return socket != kInvalid && ::close(socket) == 0;
}

std::uint32_t Socket::ParseAddress(const char* text)
{
    if (!text)
        return kAddressNone;
    in_addr address{};
    // inet_aton, like inet_addr, takes the short forms ("127.1") as well.
    return inet_aton(text, &address) ? address.s_addr : kAddressNone;
}

bool Socket::ResolveHost(const char* name, std::uint32_t& address)
{
    if (!name)
        return false;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    addrinfo* result = nullptr;
    if (getaddrinfo(name, nullptr, &hints, &result) != 0 || !result)
        return false;
    address = reinterpret_cast<const sockaddr_in*>(result->ai_addr)->sin_addr.s_addr;
    freeaddrinfo(result);
    return true;
}

bool Socket::Connect(Handle socket, std::uint32_t address, std::uint16_t port)
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = address;
    peer.sin_port = htons(port);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0)
        return true;
    if (errno != EINTR)
        return false;
    // An interrupted connect goes on in the background: wait for its outcome.
    for (;;) {
        pollfd writable{socket, POLLOUT, 0};
        const int ready = ::poll(&writable, 1, -1);
        if (ready > 0)
            break;
        if (ready < 0 && errno != EINTR)
            return false;
    }
    int error = 0;
    socklen_t length = sizeof error;
    return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
}

long Socket::Send(Handle socket, const void* data, std::size_t size)
{
    const char* bytes = static_cast<const char*>(data);
    std::size_t sent = 0;
    do {
        const ssize_t n = ::send(socket, bytes + sent, size - sent, MSG_NOSIGNAL);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return sent ? static_cast<long>(sent) : -1;
        }
        sent += static_cast<std::size_t>(n);
    } while (sent < size);
    return static_cast<long>(sent);
}

} // namespace korva
