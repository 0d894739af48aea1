#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <string>

// What a server is on its first connection and on all others.
struct ServerKind {
    SSL_CTX* tls = nullptr;       // null: http
    bool keeps = true;            // its connections; else each request has one of its own
    bool tunnels = false;         // it is a proxy first, and behind the tunnel whatever host is asked for
    SSL_CTX* proxyTls = nullptr;  // an https proxy
};

// A server on a port of 127.0.0.1 until the program ends; never stopped, never freed. Its threads' allocations
// do not fail.
struct LocalServer {
    explicit LocalServer(const ServerKind& itsKind);

    const ServerKind kind;
    std::atomic<int> requests{0};  // that came, without those to a proxy
    int port = 0;
};

// The decoded body of "/a", "/chunks", "/gzip", "/deflate", "/br" and of "/moved", which leads to "/a"; "/to/URL" leads
// to that URL, and "/missing" is 404.
const std::string& LocalBody();
// Of "/long".
const std::string& LongLocalBody();
