#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// What a scripted server does with one request.
struct RawReply {
    enum class Then { kKeep, kClose, kReset, kStall };

    std::string bytes;
    Then then = Then::kKeep;  // kStall: neither sends nor closes until the server ends
    std::string late = {};    // sent a moment later, in a packet of its own
};

// "HTTP/1.1 <status>", the header lines (each ending in CRLF), Content-Length and the body.
std::string RawReplyBytes(const std::string& status, const std::string& headers, const std::string& body);

// A script: the reply without its last bytes, from none of it to all but one, closed and reset in turn; then as it is.
std::vector<RawReply> CutAtEveryByte(const std::string& reply);

// A server on a free port of 127.0.0.1 that keeps what it receives, byte by byte. The reply to the n-th request is the
// n-th of the script; the last one repeats.
class RawServer {
public:
    explicit RawServer(std::vector<RawReply> script);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    // "http://127.0.0.1:<port>" and the path.
    std::wstring Url(const std::wstring& path = L"/") const;
    unsigned short Port() const { return m_port; }
    // Requests received so far: head and body as they came.
    std::vector<std::string> Requests() const;
    int AcceptCount() const;

private:
    struct Connection {
        std::uintptr_t socket;
        std::string pending;  // what came of requests that are not whole
        bool ended = false;   // nothing more is read
    };

    void Run();
    void Serve(Connection& connection);
    static void Close(Connection& connection);
    RawReply Record(const std::string& request);

    const std::vector<RawReply> m_script;
    std::uintptr_t m_listener = 0;
    unsigned short m_port = 0;
    std::atomic<bool> m_ending{false};
    mutable std::mutex m_lock;
    std::vector<std::string> m_requests;
    std::vector<Connection> m_connections;
    std::thread m_thread;
};
