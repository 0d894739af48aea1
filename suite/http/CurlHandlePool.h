#pragma once

#include <curl/curl.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace suite {

// An easy handle and the sockets of the connections that it keeps.
struct CurlHandle {
    CURL* easy = nullptr;
    std::string origin;  // of all its requests
    std::vector<curl_socket_t> sockets;
    bool lastCloseWasReset = false;  // by the peer
};

struct ReturnToPool {
    void operator()(CurlHandle* handle) const noexcept;
};

// A handle that belongs to one thread until it is dropped; then its options are forgotten, its connections stay.
using CurlLease = std::unique_ptr<CurlHandle, ReturnToPool>;

// The handle that was used last for this origin (scheme and authority), or a new one: so a handle has few connections
// to look at. Never one with a connection on which bytes lie that nobody asked for: libcurl would take them for the
// next reply. Empty when libcurl cannot start or there is no memory. Any thread.
CurlLease LeaseCurlHandle(const std::string& origin);

// Options without which the pool does not know a handle's sockets; to be set with the others.
void SetSocketOptions(CurlHandle& handle);

// Sets one option or throws: an exchange must not start with a check left out because memory was short.
template <typename Value>
void SetCurlOption(CURL* handle, CURLoption option, Value value) {
    if (curl_easy_setopt(handle, option, value) != CURLE_OK) {
        throw std::runtime_error("libcurl does not take option " + std::to_string(static_cast<int>(option)));
    }
}

}  // namespace suite
