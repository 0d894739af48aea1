#include "http/RecordingServer.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace sandbox {
namespace {

static_assert(std::string_view(CPPHTTPLIB_VERSION) == "0.11.4",
              "RecordingServer and ConnectionThreads use members of cpp-httplib 0.11.4 that are its own business: read "
              "both against the new version, then change this line");

// No client can send this name: the library takes everything before the first colon as a header's name.
constexpr const char* kRawHeadKey = ":raw-head";
constexpr std::size_t kLargestHead = 64 * 1024;

class RecordingStream final : public httplib::Stream {
public:
    explicit RecordingStream(httplib::Stream& stream) : m_stream(stream) {}

    bool is_readable() const override { return m_stream.is_readable(); }
    bool is_writable() const override { return m_stream.is_writable(); }
    ssize_t write(const char* bytes, size_t count) override { return m_stream.write(bytes, count); }
    void get_remote_ip_and_port(std::string& ip, int& port) const override {
        m_stream.get_remote_ip_and_port(ip, port);
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override { m_stream.get_local_ip_and_port(ip, port); }
    socket_t socket() const override { return m_stream.socket(); }

    ssize_t read(char* bytes, size_t count) override {
        if (TooLong()) {
            return -1;
        }
        const auto received = m_stream.read(bytes, count);
        if (received > 0) {
            Count(bytes, static_cast<size_t>(received));
        }
        return received;
    }

    // Called when the library has read the whole head and nothing of the body. It may read bodyLimit bytes more.
    const std::string& CompleteHead(std::uint64_t bodyLimit) {
        m_bodyLimit = bodyLimit;
        return m_head;
    }

    // Then nothing more is read, and the connection must be closed: the rest of the request is still to come.
    bool TooLong() const { return m_bodyLimit ? m_bodySize > *m_bodyLimit : m_head.size() > kLargestHead; }

private:
    void Count(const char* bytes, size_t count) {
        if (m_bodyLimit) {
            m_bodySize += count;
        } else {
            m_head.append(bytes, count);
        }
    }

    httplib::Stream& m_stream;
    std::string m_head;
    std::optional<std::uint64_t> m_bodyLimit;  // nothing until the head is complete
    std::uint64_t m_bodySize = 0;              // as it stands on the wire, the sizes of chunks included
};

// The library itself limits a body whose length the head tells: it skips one that is too long, and answers 413.
std::uint64_t BodyLimit(const httplib::Request& request, std::size_t largestBody) {
    const bool lengthTold =
        request.has_header("Content-Length") && !httplib::detail::is_chunked_transfer_encoding(request.headers);
    return lengthTold ? std::numeric_limits<std::uint64_t>::max() : largestBody;
}

std::function<void(httplib::Request&)> HandOver(RecordingStream& stream, std::size_t largestBody, const SSL* tls) {
    return [&stream, largestBody, tls](httplib::Request& request) {
        request.headers.emplace(kRawHeadKey, stream.CompleteHead(BodyLimit(request, largestBody)));
        request.ssl = tls;
    };
}

// How long a connection may stay.
struct Lifetime {
    const std::atomic<socket_t>& listener;  // invalid once the server stops
    std::size_t requests;
    std::chrono::seconds idle;
};

// Waits for the next request; false when the connection was idle for too long or broke, or the server stops.
bool WaitForRequest(socket_t socket, const Lifetime& lifetime) {
    constexpr time_t kPollMicroseconds = 50'000;
    const auto end = std::chrono::steady_clock::now() + lifetime.idle;
    while (lifetime.listener != INVALID_SOCKET && std::chrono::steady_clock::now() < end) {
        const auto ready = httplib::detail::select_read(socket, 0, kPollMicroseconds);
        if (ready != 0) {
            return ready > 0;
        }
    }
    return false;
}

// Serves one request after the other: serveOne(lastRequest, closed) returns whether the exchange was complete and sets
// closed when the peer asked for the end. Returns whether the last exchange was complete.
template <typename ServeOne>
bool ServeConnection(socket_t socket, const Lifetime& lifetime, ServeOne serveOne) {
    bool complete = false;
    bool closed = false;
    for (auto left = lifetime.requests; left > 0 && !closed && WaitForRequest(socket, lifetime); --left) {
        complete = serveOne(left == 1, closed);
        closed = closed || !complete;
    }
    return complete;
}

void SendAtOnce(socket_t socket) {
    // Head and body go out in two writes; the second must not wait for the first one's acknowledgement.
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof(on));
}

void Close(socket_t socket) {
    httplib::detail::shutdown_socket(socket);
    httplib::detail::close_socket(socket);
}

}  // namespace

std::string RawHead(const httplib::Request& request) {
    const auto head = request.headers.find(kRawHeadKey);
    return head == request.headers.end() ? std::string() : head->second;
}

RecordingHttpServer::RecordingHttpServer(std::function<void()> onConnection)
    : m_onConnection(std::move(onConnection)) {}

bool RecordingHttpServer::process_and_close_socket(socket_t socket) {
    m_onConnection();
    SendAtOnce(socket);
    const Lifetime lifetime{svr_sock_, keep_alive_max_count_, std::chrono::seconds(keep_alive_timeout_sec_)};
    const bool complete = ServeConnection(socket, lifetime, [&](bool lastRequest, bool& closed) {
        httplib::detail::SocketStream stream(socket, read_timeout_sec_, read_timeout_usec_, write_timeout_sec_,
                                             write_timeout_usec_);
        RecordingStream recording(stream);
        return process_request(recording, lastRequest, closed, HandOver(recording, payload_max_length_, nullptr)) &&
               !recording.TooLong();
    });
    Close(socket);
    return complete;
}

RecordingHttpsServer::RecordingHttpsServer(X509* certificate, EVP_PKEY* key, std::function<void()> onConnection)
    : SSLServer(certificate, key), m_onConnection(std::move(onConnection)) {}

bool RecordingHttpsServer::process_and_close_socket(socket_t socket) {
    m_onConnection();
    SendAtOnce(socket);
    SSL* tls = httplib::detail::ssl_new(
        socket, ssl_context(), m_contextLock,
        [&](SSL* handshake) {
            return httplib::detail::ssl_connect_or_accept_nonblocking(socket, handshake, SSL_accept, read_timeout_sec_,
                                                                      read_timeout_usec_);
        },
        [](SSL*) { return true; });
    bool complete = false;
    if (tls != nullptr) {
        complete = ServeRequests(socket, tls);
        // A connection that is cut gets no closing alert: its peer must see the cut.
        httplib::detail::ssl_delete(m_contextLock, tls, complete);
    }
    Close(socket);
    return complete;
}

bool RecordingHttpsServer::ServeRequests(socket_t socket, SSL* tls) {
    const Lifetime lifetime{svr_sock_, keep_alive_max_count_, std::chrono::seconds(keep_alive_timeout_sec_)};
    return ServeConnection(socket, lifetime, [&](bool lastRequest, bool& closed) {
        httplib::detail::SSLSocketStream stream(socket, tls, read_timeout_sec_, read_timeout_usec_, write_timeout_sec_,
                                                write_timeout_usec_);
        RecordingStream recording(stream);
        return process_request(recording, lastRequest, closed, HandOver(recording, payload_max_length_, tls)) &&
               !recording.TooLong();
    });
}

}  // namespace sandbox
