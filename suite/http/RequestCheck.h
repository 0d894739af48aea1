#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "HttpLib.h"
#include "UrlText.h"

namespace suite {

// One exchange as it goes out, checked: all text is UTF-8, the URL escaped, headers without CR, LF or NUL.
struct CheckedRequest {
    std::string url;
    UrlParts parts;  // of the URL
    bool post = false;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;  // empty for a GET
};

// Checks and converts what a strategy describes, or says in one sentence why it must not be sent. url: the strategy's.
// Throws std::length_error for text beyond every reason.
std::variant<CheckedRequest, std::string> CheckRequest(const IHttpLibStrategy& strategy, const GivenUrl& url);

}  // namespace suite
