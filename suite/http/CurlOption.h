#pragma once

#include <curl/curl.h>

#include <stdexcept>
#include <string>

// Sets one option or throws: an exchange must not start with a check left out because memory was short.
template <typename Value>
void SetCurlOption(CURL* handle, CURLoption option, Value value) {
    if (curl_easy_setopt(handle, option, value) != CURLE_OK) {
        throw std::runtime_error("libcurl does not take option " + std::to_string(static_cast<int>(option)));
    }
}
