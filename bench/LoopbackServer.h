#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

namespace bench {

// A keep-alive server on a free port of 127.0.0.1 that answers at once, one thread a connection. It and its threads end
// with the process.
class LoopbackServer {
public:
    enum class Scheme { kHttp, kHttps };

    explicit LoopbackServer(Scheme scheme);
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    // Before the first request of that path: status 200 with this body, further header lines (each ending in CRLF), the
    // body sent so many times, after a pause.
    struct Reply {
        std::string body;
        std::string headers = {};
        std::size_t times = 1;
        unsigned pauseMilliseconds = 0;
    };
    void Answer(const std::string& path, Reply reply) { m_replies[path] = std::move(reply); }

    // "http://127.0.0.1:<port>", or with https.
    std::string Origin() const;
    // PEM of the authority that signed an https server's certificate.
    const std::string& AuthorityPem() const { return m_authorityPem; }
    int Connections() const { return m_connections; }

private:
    struct Tls;

    void AcceptForEver();
    template <typename Stream>
    void Serve(Stream stream) const;
    const Reply* ReplyTo(const std::string& request) const;

    std::map<std::string, Reply> m_replies;
    std::uintptr_t m_listener = 0;
    unsigned short m_port = 0;
    std::atomic<int> m_connections{0};
    std::string m_authorityPem;
    void* m_tls = nullptr;  // an SSL_CTX, never freed
};

}  // namespace bench
