#pragma once

#include <curl/curl.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace suite {

struct ReturnToPool {
    void operator()(CURL* handle) const noexcept;
};

// A handle that belongs to one thread until it is dropped; then its options are forgotten, its connections stay.
using CurlLease = std::unique_ptr<CURL, ReturnToPool>;

// The handle that was used last, or a new one. Empty when libcurl cannot start or there is no memory. Any thread.
CurlLease LeaseCurlHandle();

// Sets one option or throws: an exchange must not start with a check left out because memory was short.
template <typename Value>
void SetCurlOption(CURL* handle, CURLoption option, Value value) {
    if (curl_easy_setopt(handle, option, value) != CURLE_OK) {
        throw std::runtime_error("libcurl does not take option " + std::to_string(static_cast<int>(option)));
    }
}

}  // namespace suite
