#pragma once

#include <functional>
#include <mutex>
#include <string>

#include <httplib.h>

namespace sandbox {

// The HTTP library leaves headers with empty values out when it parses a request, and the platform has to know whether
// such a header was there. These servers hand the library a stream that keeps a copy of what it reads up to the end of
// the head, and pass that copy on with the request. They also look after idle connections themselves: the library would
// wait for each to time out before it stops. And the largest payload that they are set to holds for bodies of untold
// length too, whose connection ends there.

// The head of a request as it stood on the wire; only for requests of the servers below.
std::string RawHead(const httplib::Request& request);

class RecordingHttpServer final : public httplib::Server {
public:
    // onConnection is called for each accepted connection, on its thread.
    explicit RecordingHttpServer(std::function<void()> onConnection);

private:
    bool process_and_close_socket(socket_t socket) override;

    std::function<void()> m_onConnection;
};

class RecordingHttpsServer final : public httplib::SSLServer {
public:
    RecordingHttpsServer(X509* certificate, EVP_PKEY* key, std::function<void()> onConnection);

private:
    bool process_and_close_socket(socket_t socket) override;
    bool ServeRequests(socket_t socket, SSL* tls);

    std::function<void()> m_onConnection;
    std::mutex m_contextLock;  // guards the making and freeing of SSL objects
};

}  // namespace sandbox
