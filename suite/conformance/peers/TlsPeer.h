#pragma once

#include <httplib.h>
#if !defined(_WIN32)
#undef DELETE  // of the resolver's headers; the platform has a constant of that name
#endif

#include <thread>

#include "TestIdentity.h"

// An https server on a free port of 127.0.0.1 that answers "/" with 200 until it goes.
struct TlsPeer {
    // intermediate: sent behind the server's own certificate when it is not null.
    explicit TlsPeer(const TestIdentity& identity, const TestIdentity* intermediate = nullptr,
                     int highestVersion = TLS1_3_VERSION)
        : server(identity.certificate.get(), identity.key.get()) {
        SSL_CTX_set_max_proto_version(server.ssl_context(), highestVersion);
        if (intermediate != nullptr) {
            SSL_CTX_add1_chain_cert(server.ssl_context(), intermediate->certificate.get());
        }
        server.new_task_queue = [] { return new httplib::ThreadPool(4); };  // a test may have many peers
        server.set_keep_alive_timeout(1);  // its end waits for an idle connection that long
        server.Get("/",
                   [](const httplib::Request&, httplib::Response& reply) { reply.set_content("ok", "text/plain"); });
        server.set_read_timeout(60);  // of the handshake too: a busy machine takes its time
        thread = std::thread([this] { server.listen_after_bind(); });
        while (!server.is_running()) {
            std::this_thread::yield();
        }
    }
    ~TlsPeer() {
        server.stop();
        thread.join();
    }

    httplib::SSLServer server;
    const int port = server.bind_to_any_port("127.0.0.1");
    std::thread thread;
};
