#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// What a scripted server does with one request.
struct RawReply {
    // kRepeat: sends the last part again and again until the client goes. kStall: neither sends nor closes until the
    // server ends. kTrickle: sends the last part byte by byte, one in half a second, and begins again at its end.
    enum class Then { kKeep, kClose, kReset, kRepeat, kStall, kTrickle };

    std::string bytes;
    Then then = Then::kKeep;
    std::string last = {};  // not empty: sent a moment later, in a packet of its own
};

// "HTTP/1.1 <status>", the header lines (each ending in CRLF), Content-Length and the body.
std::string RawReplyBytes(const std::string& status, const std::string& headers, const std::string& body);

// A server on a free port of 127.0.0.1 that keeps what it receives, byte by byte.
class RawServer {
public:
    // What to answer to a request, head and body as they came. Runs on the server's thread, one at a time.
    using Answer = std::function<RawReply(const std::string& request)>;

    explicit RawServer(Answer answer);
    // The reply to the n-th request is the n-th of the script; the last one repeats.
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
        std::string trickle = {};
        std::size_t trickled = 0;
    };

    void Run();
    void Serve(Connection& connection);
    bool SendAll(std::uintptr_t socket, const std::string& bytes) const;
    static void Close(Connection& connection);
    void Trickle();

    const Answer m_answer;
    std::chrono::steady_clock::time_point m_nextTrickle;
    std::uintptr_t m_listener = 0;
    unsigned short m_port = 0;
    std::atomic<bool> m_ending{false};
    mutable std::mutex m_lock;
    std::vector<std::string> m_requests;
    std::vector<Connection> m_connections;
    std::thread m_thread;
};
