#pragma once

#include <functional>
#include <mutex>
#include <string>

#include <httplib.h>

namespace sandbox {

// The platform has to see each header as it was sent. The HTTP library does not tell: it leaves out headers with empty
// values, and percent-decodes the values of the others. These servers therefore hand the library a stream that keeps a
// copy of the head, and pass that copy on with the request.
// They also look after idle connections themselves: the library would wait for each to time out before it stops.
// The library limits only bodies whose length the head tells. These servers limit the others too, by ending the
// connection.

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
