#pragma once

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <windows.h>

#include <cerrno>

// The platform's sockets, as the tests' scripted server calls them: numbers without a sign, lengths of type int, a set
// of sockets that is a list.
using SOCKET = std::uintptr_t;
#define INVALID_SOCKET (~SOCKET{0})
#define SD_SEND SHUT_WR
#define WSAEWOULDBLOCK 10035
#define MAKEWORD(low, high) ((low) | (high) << 8)
struct WSADATA {};
inline int WSAStartup(int, WSADATA*) {
    return 0;
}
inline int WSACleanup() {
    return 0;
}

struct SocketSet {
    unsigned fd_count = 0;
    SOCKET fd_array[FD_SETSIZE];
};
#define fd_set SocketSet
#undef FD_ZERO
#undef FD_ISSET
#define FD_ZERO(set) ((set)->fd_count = 0)
#define FD_ISSET(socket, set) IsIn(socket, *(set))

inline int Native(SOCKET socket) {
    return static_cast<int>(socket);
}
inline bool IsIn(SOCKET socket, const SocketSet& set) {
    for (unsigned index = 0; index < set.fd_count; ++index) {
        if (set.fd_array[index] == socket) {
            return true;
        }
    }
    return false;
}
inline int select(int, SocketSet* readable, void*, void*, const timeval* limit) {
    pollfd polled[FD_SETSIZE];
    for (unsigned index = 0; index < readable->fd_count; ++index) {
        polled[index] = {Native(readable->fd_array[index]), POLLIN, 0};
    }
    const int ready = poll(polled, readable->fd_count, static_cast<int>(limit->tv_sec * 1000 + limit->tv_usec / 1000));
    const unsigned asked = readable->fd_count;
    readable->fd_count = 0;
    for (unsigned index = 0; ready > 0 && index < asked; ++index) {
        if (polled[index].revents != 0) {
            readable->fd_array[readable->fd_count++] = static_cast<SOCKET>(polled[index].fd);
        }
    }
    return ready;
}
inline int bind(SOCKET socket, const sockaddr* address, int size) {
    return bind(Native(socket), address, static_cast<socklen_t>(size));
}
inline int listen(SOCKET socket, int waiting) {
    return listen(Native(socket), waiting);
}
inline int getsockname(SOCKET socket, sockaddr* address, int* size) {
    socklen_t length = static_cast<socklen_t>(*size);
    return getsockname(Native(socket), address, &length);
}
inline SOCKET accept(SOCKET socket, sockaddr*, int*) {
    return static_cast<SOCKET>(static_cast<std::intptr_t>(accept(Native(socket), nullptr, nullptr)));
}
inline int recv(SOCKET socket, char* buffer, std::size_t bytes, int flags) {
    return static_cast<int>(recv(Native(socket), static_cast<void*>(buffer), bytes, flags));
}
inline int send(SOCKET socket, const char* buffer, int bytes, int flags) {
    return static_cast<int>(
        send(Native(socket), static_cast<const void*>(buffer), static_cast<std::size_t>(bytes), flags | MSG_NOSIGNAL));
}
inline int ioctlsocket(SOCKET socket, unsigned long request, u_long* value) {
    int number = static_cast<int>(*value);
    return ioctl(Native(socket), request, &number);
}
inline int WSAGetLastError() {
    return errno == EAGAIN ? WSAEWOULDBLOCK : errno;
}
inline int shutdown(SOCKET socket, int how) {
    return shutdown(Native(socket), how);
}
inline int setsockopt(SOCKET socket, int level, int option, const char* value, std::size_t bytes) {
    return setsockopt(Native(socket), level, option, static_cast<const void*>(value), static_cast<socklen_t>(bytes));
}
inline int closesocket(SOCKET socket) {
    return close(Native(socket));
}
