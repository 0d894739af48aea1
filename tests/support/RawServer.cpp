#include "RawServer.h"

#include <winsock2.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace {

std::size_t BodyLength(const std::string& head) {
    const std::string name = "\r\nContent-Length: ";
    const std::size_t found = head.find(name);
    return found == std::string::npos ? 0 : std::stoul(head.substr(found + name.size()));
}

void SendAll(SOCKET socket, const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const int count = send(socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count <= 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

}  // namespace

std::string RawReplyBytes(const std::string& status, const std::string& headers, const std::string& body) {
    return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

RawServer::RawServer(std::vector<RawReply> script) : m_script(std::move(script)) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    m_listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(m_listener, generic, size) != 0 || listen(m_listener, 16) != 0 ||
        getsockname(m_listener, generic, &size) != 0) {
        throw std::runtime_error("no free port on the loopback address");
    }
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread(&RawServer::Accept, this);
}

RawServer::~RawServer() {
    m_ending = true;
    m_acceptor.join();
    for (std::thread& servant : m_servants) {
        servant.join();
    }
    for (const SOCKET connection : m_connections) {
        closesocket(connection);
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
bool RawServer::WaitForInput(std::uintptr_t socket) const {
    while (!m_ending) {
        fd_set readable;
        FD_ZERO(&readable);
        readable.fd_array[readable.fd_count++] = socket;
        timeval limit = {0, 20000};
        if (select(0, &readable, nullptr, nullptr, &limit) != 0) {
            return true;
        }
    }
    return false;
}

void RawServer::Accept() {
    while (WaitForInput(m_listener)) {
        const SOCKET connection = accept(m_listener, nullptr, nullptr);
        const std::lock_guard<std::mutex> hold(m_lock);
        m_connections.push_back(connection);
        m_servants.emplace_back(&RawServer::Serve, this, connection);
    }
}

void RawServer::Serve(std::uintptr_t connection) {
    std::string pending;
    for (;;) {
        const std::string request = Receive(connection, pending);
        if (request.empty()) {
            return;
        }
        const RawReply reply = Record(request);
        SendAll(connection, reply.bytes);
        if (reply.then == RawReply::Then::kClose) {
            shutdown(connection, SD_SEND);
        }
        while (reply.then == RawReply::Then::kStall && !m_ending) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
}

// One whole request from the connection; what lies beyond it stays in pending. Empty at the connection's end.
std::string RawServer::Receive(std::uintptr_t connection, std::string& pending) const {
    for (;;) {
        const std::size_t headEnd = pending.find("\r\n\r\n");
        if (headEnd != std::string::npos) {
            const std::size_t size = headEnd + 4 + BodyLength(pending.substr(0, headEnd + 2));
            if (pending.size() >= size) {
                std::string request = pending.substr(0, size);
                pending.erase(0, size);
                return request;
            }
        }
        char block[16384];
        const int received = WaitForInput(connection) ? recv(connection, block, sizeof block, 0) : 0;
        if (received <= 0) {
            return {};
        }
        pending.append(block, static_cast<std::size_t>(received));
    }
}

RawReply RawServer::Record(const std::string& request) {
    const std::lock_guard<std::mutex> hold(m_lock);
    RawReply reply = m_script[std::min(m_requests.size(), m_script.size() - 1)];
    m_requests.push_back(request);
    return reply;
}
