#include "RawServer.h"

// For as many connections as a test has threads.
#undef FD_SETSIZE
#define FD_SETSIZE 1024
#include <winsock2.h>

#include <algorithm>
#include <stdexcept>

namespace {

// Size of the first request, head and body; 0 while it is not whole.
std::size_t FirstRequestSize(const std::string& pending) {
    const std::size_t headEnd = pending.find("\r\n\r\n");
    if (headEnd == std::string::npos) {
        return 0;
    }
    const std::string name = "\r\nContent-Length: ";
    const std::size_t length = pending.find(name);
    const std::size_t size =
        headEnd + 4 + (length < headEnd ? std::stoul(pending.substr(length + name.size(), 20)) : 0);
    return pending.size() < size ? 0 : size;
}

RawServer::Answer OneAfterTheOther(std::vector<RawReply> script) {
    return [script = std::move(script), next = std::size_t{0}](const std::string&) mutable {
        return script[std::min(next++, script.size() - 1)];
    };
}

}  // namespace

std::string RawReplyBytes(const std::string& status, const std::string& headers, const std::string& body) {
    return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

RawServer::RawServer(std::vector<RawReply> script) : RawServer(OneAfterTheOther(std::move(script))) {}

RawServer::RawServer(Answer answer) : m_answer(std::move(answer)) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    m_listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(m_listener, generic, size) != 0 || listen(m_listener, SOMAXCONN) != 0 ||
        getsockname(m_listener, generic, &size) != 0) {
        throw std::runtime_error("no free port on the loopback address");
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread(&RawServer::Run, this);
}

RawServer::~RawServer() {
    m_ending = true;
    m_thread.join();
    for (const Connection& connection : m_connections) {
        closesocket(connection.socket);
    }
    closesocket(m_listener);
    WSACleanup();
}

std::wstring RawServer::Url(const std::wstring& path) const {
    return L"http://127.0.0.1:" + std::to_wstring(m_port) + path;
}

std::vector<std::string> RawServer::Requests() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_requests;
}

int RawServer::AcceptCount() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return static_cast<int>(m_connections.size());
}

// Neither closing nor shutting down a socket wakes its waiting thread on every system, hence the short waits.
void RawServer::Run() {
    while (!m_ending) {
        fd_set readable;
        FD_ZERO(&readable);
        readable.fd_array[readable.fd_count++] = m_listener;
        for (const Connection& connection : m_connections) {
            if (!connection.ended) {
                readable.fd_array[readable.fd_count++] = connection.socket;
            }
        }
        Trickle();
        timeval limit = {0, 5000};
        if (select(0, &readable, nullptr, nullptr, &limit) <= 0) {
            continue;
        }
        for (Connection& connection : m_connections) {
            if (FD_ISSET(connection.socket, &readable)) {
                Serve(connection);
            }
        }
        if (FD_ISSET(m_listener, &readable)) {
            const std::lock_guard<std::mutex> hold(m_lock);
            const SOCKET accepted = accept(m_listener, nullptr, nullptr);
            if (accepted != INVALID_SOCKET) {
                u_long isNonBlocking = 1;
                ioctlsocket(accepted, FIONBIO, &isNonBlocking);
                m_connections.push_back({accepted, {}});
            }
        }
    }
}

// Takes what has come and answers the requests that it completes.
void RawServer::Serve(Connection& connection) {
    char block[16384];
    const int received = recv(connection.socket, block, sizeof block, 0);
    if (received <= 0) {
        return Close(connection);
    }
    connection.pending.append(block, static_cast<std::size_t>(received));
    while (const std::size_t size = connection.ended ? 0 : FirstRequestSize(connection.pending)) {
        const std::string request = connection.pending.substr(0, size);
        connection.pending.erase(0, size);
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            m_requests.push_back(request);
        }
        const RawReply reply = m_answer(request);
        SendAll(connection.socket, reply.bytes);
        if (reply.then == RawReply::Then::kRepeat) {
            while (SendAll(connection.socket, reply.last)) {
            }
        } else if (reply.then == RawReply::Then::kTrickle) {
            connection.trickle = reply.last;
        } else if (!reply.last.empty()) {
            Sleep(50);
            SendAll(connection.socket, reply.last);
        }
        if (reply.then == RawReply::Then::kClose) {
            shutdown(connection.socket, SD_SEND);
        }
        if (reply.then == RawReply::Then::kReset) {
            const linger atOnce = {1, 0};
            setsockopt(connection.socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
            return Close(connection);
        }
        connection.ended = reply.then == RawReply::Then::kStall;
    }
}

// False when the client has gone, or the server ends. Never waits within send: Wine's does not always return when the
// client goes meanwhile.
bool RawServer::SendAll(std::uintptr_t socket, const std::string& bytes) const {
    std::size_t sent = 0;
    while (sent < bytes.size() && !m_ending) {
        const int count = send(socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count > 0) {
            sent += static_cast<std::size_t>(count);
        } else if (WSAGetLastError() == WSAEWOULDBLOCK) {
            Sleep(1);
        } else {
            return false;
        }
    }
    return sent == bytes.size();
}

void RawServer::Close(Connection& connection) {
    closesocket(connection.socket);
    connection.socket = INVALID_SOCKET;
    connection.ended = true;
}

void RawServer::Trickle() {
    if (std::chrono::steady_clock::now() < m_nextTrickle) {
        return;
    }
    m_nextTrickle = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
    for (Connection& connection : m_connections) {
        if (!connection.ended && !connection.trickle.empty()) {
            SendAll(connection.socket, {connection.trickle[connection.trickled++ % connection.trickle.size()]});
        }
    }
}
