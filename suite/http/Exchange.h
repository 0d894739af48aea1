#pragma once

#include <string>

#include "ReplySink.h"
#include "RequestCheck.h"

namespace suite {

// How one exchange, redirects included, came out.
struct ExchangeOutcome {
    int code = 0;         // HTTP status or HttpTransportError
    std::string cause{};  // for the error log, when code is negative
    std::string host{};   // host and port that the last hop spoke to
    bool connectionReused = false;
};

// Sends a checked request and follows redirects; blocks until the final reply is complete or something failed.
// certPath: see AuthoritiesFor. timeoutSeconds: limit for the whole exchange, 0 or less for none. Throws what a lack of
// memory throws.
ExchangeOutcome PerformExchange(CheckedRequest request, const std::wstring& certPath, int timeoutSeconds,
                                ReplySink& sink);

}  // namespace suite
