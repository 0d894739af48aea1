#include "LoopbackServer.h"

#include <winsock2.h>
// windows.h comes after winsock2.h.
#include <openssl/ssl.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "crypto/Certificates.h"

namespace bench {
namespace {

constexpr std::size_t kBlockBytes = 256 * 1024;

struct PlainStream {
    SOCKET socket;

    int Read(char* data, int size) const { return recv(socket, data, size, 0); }
    bool Write(const char* data, std::size_t size) const {
        while (size > 0) {
            const int sent = send(socket, data, static_cast<int>(std::min(size, kBlockBytes)), 0);
            if (sent <= 0) {
                return false;
            }
            data += sent;
            size -= static_cast<std::size_t>(sent);
        }
        return true;
    }
    void Close() const { closesocket(socket); }
};

struct TlsStream {
    SOCKET socket;
    SSL* tls;

    int Read(char* data, int size) const { return SSL_read(tls, data, size); }
    bool Write(const char* data, std::size_t size) const {
        return SSL_write(tls, data, static_cast<int>(size)) == static_cast<int>(size);
    }
    void Close() const {
        SSL_free(tls);
        closesocket(socket);
    }
};

SSL_CTX* NewTlsContext(std::string& authorityPem) {
    const sandbox::ServerIdentity identity = sandbox::MakeServerIdentity("127.0.0.1");
    authorityPem = identity.authorityPem;
    SSL_CTX* const context = SSL_CTX_new(TLS_server_method());
    SSL_CTX_use_certificate(context, identity.certificate.get());
    SSL_CTX_use_PrivateKey(context, identity.key.get());
    return context;
}

std::size_t ContentLength(const std::string& head) {
    const std::size_t at = head.find("Content-Length: ");
    return at == std::string::npos ? 0 : std::strtoul(head.c_str() + at + 16, nullptr, 10);
}

}  // namespace

LoopbackServer::LoopbackServer(Scheme scheme) {
    WSADATA data;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    const bool started = WSAStartup(MAKEWORD(2, 2), &data) == 0;
    m_listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (!started || m_listener == INVALID_SOCKET || bind(m_listener, generic, size) != 0 ||
        listen(m_listener, SOMAXCONN) != 0 || getsockname(m_listener, generic, &size) != 0) {
        throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    m_port = ntohs(address.sin_port);
    m_tls = scheme == Scheme::kHttps ? NewTlsContext(m_authorityPem) : nullptr;
    std::thread([this] { AcceptForEver(); }).detach();
}

std::string LoopbackServer::Origin() const {
    return (m_tls != nullptr ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(m_port);
}

void LoopbackServer::AcceptForEver() {
    for (;;) {
        const SOCKET socket = accept(m_listener, nullptr, nullptr);
        if (socket == INVALID_SOCKET) {
            return;
        }
        ++m_connections;
        const BOOL yes = TRUE;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&yes), sizeof yes);
        if (m_tls == nullptr) {
            std::thread([this, socket] { Serve(PlainStream{socket}); }).detach();
            continue;
        }
        std::thread([this, socket] {
            SSL* const tls = SSL_new(static_cast<SSL_CTX*>(m_tls));
            SSL_set_fd(tls, static_cast<int>(socket));
            if (SSL_accept(tls) == 1) {
                Serve(TlsStream{socket, tls});
            } else {
                TlsStream{socket, tls}.Close();
            }
        }).detach();
    }
}

// The path of "GET /path?query HTTP/1.1".
const LoopbackServer::Reply* LoopbackServer::ReplyTo(const std::string& request) const {
    const std::size_t start = request.find(' ') + 1;
    const auto found = m_replies.find(request.substr(start, request.find_first_of("? ", start) - start));
    return found == m_replies.end() ? nullptr : &found->second;
}

template <typename Stream>
void LoopbackServer::Serve(Stream stream) const {
    std::string pending;
    std::string block(16 * 1024, '\0');
    for (bool open = true; open;) {
        const int count = stream.Read(block.data(), static_cast<int>(block.size()));
        if (count <= 0) {
            break;
        }
        pending.append(block, 0, static_cast<std::size_t>(count));
        const std::size_t end = pending.find("\r\n\r\n");
        if (end == std::string::npos || pending.size() < end + 4 + ContentLength(pending)) {
            continue;
        }
        const Reply* const reply = ReplyTo(pending);
        pending.clear();
        if (reply == nullptr) {
            open = stream.Write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n", 45);
            continue;
        }
        if (reply->pauseMilliseconds > 0) {
            Sleep(reply->pauseMilliseconds);
        }
        std::string head = "HTTP/1.1 200 OK\r\n" + reply->headers +
                           "Content-Length: " + std::to_string(reply->body.size() * reply->times) + "\r\n\r\n";
        open = stream.Write((reply->times == 1 ? head + reply->body : head).data(),
                            head.size() + (reply->times == 1 ? reply->body.size() : 0));
        for (std::size_t i = 0; open && reply->times > 1 && i < reply->times; ++i) {
            open = stream.Write(reply->body.data(), reply->body.size());
        }
    }
    stream.Close();
}

}  // namespace bench
