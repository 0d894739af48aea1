#pragma once

#include <curl/curl.h>

#include <string>

namespace suite {

// Why an exchange did not complete: an HttpTransportError and one sentence for the error log.
struct TransportFailure {
    int code = 0;
    std::string cause;
};

// detail: libcurl's error buffer, may be empty; user information in it is not passed on. verifyResult:
// CURLINFO_SSL_VERIFYRESULT.
TransportFailure DescribeFailure(CURLcode result, const std::string& detail, long verifyResult);

}  // namespace suite
