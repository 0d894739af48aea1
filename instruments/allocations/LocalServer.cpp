#include "LocalServer.h"

#include <arpa/inet.h>
#include <brotli/encode.h>
#include <openssl/bio.h>
#include <sys/socket.h>
#include <zlib.h>

#include <csignal>
#include <memory>
#include <thread>

namespace {

struct BioDeleter {
    void operator()(BIO* bio) const { BIO_free_all(bio); }
};
using Peer = std::unique_ptr<BIO, BioDeleter>;

// wrapping: of zlib's deflateInit2.
std::string Deflated(const std::string& text, int wrapping) {
    std::string coded(text.size() + 100, '\0');
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, wrapping, 8, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(coded.data());
    stream.avail_out = static_cast<uInt>(coded.size());
    deflate(&stream, Z_FINISH);
    coded.resize(stream.total_out);
    deflateEnd(&stream);
    return coded;
}

std::string Brotli(const std::string& text) {
    std::size_t size = text.size() + 100;
    std::string coded(size, '\0');
    BrotliEncoderCompress(5, 22, BROTLI_MODE_GENERIC, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()),
                          &size, reinterpret_cast<std::uint8_t*>(coded.data()));
    coded.resize(size);
    return coded;
}

std::string Reply(const std::string& headers, const std::string& body) {
    return headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string ReplyTo(const std::string& request, bool keeps) {
    constexpr std::size_t kPathAt = 4;  // behind "GET "
    const std::string path = request.substr(kPathAt, request.find_first_of(" ?", kPathAt) - kPathAt);
    const std::string close = keeps ? "" : "Connection: close\r\n";
    const std::string ok = "HTTP/1.1 200 OK\r\n" + close;
    if (path == "/moved") {
        return Reply("HTTP/1.1 302 X\r\nLocation: /a\r\n" + close, LocalBody());
    }
    if (path.rfind("/to/", 0) == 0) {
        return Reply("HTTP/1.1 302 X\r\nLocation: " + path.substr(4) + "\r\n" + close, "");
    }
    if (path == "/chunks") {
        return ok + "Transfer-Encoding: chunked\r\nX-A: b\r\n\r\n28\r\n" + LocalBody() + "\r\n0\r\n\r\n";
    }
    if (path == "/missing") {
        return Reply("HTTP/1.1 404 X\r\n" + close, LocalBody());
    }
    if (path == "/gzip") {
        return Reply(ok + "Content-Encoding: gzip\r\n", Deflated(LocalBody(), MAX_WBITS + 16));
    }
    if (path == "/deflate") {
        return Reply(ok + "Content-Encoding: deflate\r\n", Deflated(LocalBody(), -MAX_WBITS));
    }
    if (path == "/br") {
        return Reply(ok + "Content-Encoding: br\r\n", Brotli(LocalBody()));
    }
    return Reply(ok + "X-A: b\r\n", path == "/long" ? LongLocalBody() : LocalBody());
}

Peer Over(SSL_CTX* tls, Peer lower) {
    Peer upper(BIO_new_ssl(tls, 0));
    BIO_push(upper.get(), lower.release());
    return upper;
}

// One request's head; empty when the client has gone.
std::string ReadHead(BIO* peer) {
    std::string head;
    char block[4096];
    while (head.find("\r\n\r\n") == std::string::npos) {
        const int bytes = BIO_read(peer, block, sizeof block);
        if (bytes <= 0) {
            return {};
        }
        head.append(block, static_cast<std::size_t>(bytes));
    }
    return head;
}

void Write(BIO* peer, const std::string& bytes) {
    BIO_write(peer, bytes.data(), static_cast<int>(bytes.size()));
}

void Serve(LocalServer& server, int socket) {
    const ServerKind& kind = server.kind;
    Peer peer(BIO_new_socket(socket, BIO_CLOSE));
    if (kind.proxyTls != nullptr) {
        peer = Over(kind.proxyTls, std::move(peer));
    }
    if (kind.tunnels) {
        if (ReadHead(peer.get()).empty()) {
            return;
        }
        Write(peer.get(), "HTTP/1.1 200 OK\r\n\r\n");
    }
    if (kind.tls != nullptr) {
        peer = Over(kind.tls, std::move(peer));
    }
    do {
        const std::string head = ReadHead(peer.get());
        if (head.empty()) {
            return;
        }
        ++server.requests;
        Write(peer.get(), ReplyTo(head, kind.keeps));
    } while (kind.keeps);
}

}  // namespace

LocalServer::LocalServer(const ServerKind& itsKind) : kind(itsKind) {
    std::signal(SIGPIPE, SIG_IGN);  // of clients that have gone
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    bind(listener, reinterpret_cast<sockaddr*>(&address), length);
    listen(listener, 100);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    std::thread([this, listener] {
        for (;;) {
            const int client = accept(listener, nullptr, nullptr);
            std::thread([this, client] { Serve(*this, client); }).detach();
        }
    }).detach();
}

const std::string& LocalBody() {
    static const std::string body(40, 'r');
    return body;
}

// Several records of TLS.
const std::string& LongLocalBody() {
    static const std::string body = [] {
        std::string text;
        for (int i = 0; text.size() < 100'000; ++i) {
            text += std::to_string(i * 7919) + " ";
        }
        return text;
    }();
    return body;
}
