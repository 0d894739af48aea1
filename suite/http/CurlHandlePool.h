#pragma once

#include <curl/curl.h>

#include <memory>

struct ReturnToPool {
    void operator()(CURL* handle) const noexcept;
};

// A handle that belongs to one thread until it is dropped; then its options are forgotten, its connections stay.
using CurlLease = std::unique_ptr<CURL, ReturnToPool>;

// The handle that was used last, or a new one. Empty when libcurl cannot start or there is no memory. Any thread.
CurlLease LeaseCurlHandle();
