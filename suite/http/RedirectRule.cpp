#include "RedirectRule.h"

#include <algorithm>

#include "HeaderText.h"
#include "UrlText.h"

namespace suite {

namespace {

bool IsPublicHeader(const std::string& name) {
    static constexpr const char* kPublic[] = {"Accept",        "Accept-Encoding", "Accept-Language",
                                              "Cache-Control", "Content-Type",    "User-Agent"};
    return std::any_of(std::begin(kPublic), std::end(kPublic),
                       [&name](const char* known) { return SameHeaderName(name, known); });
}

template <typename Condition>
void RemoveHeaders(CheckedRequest& request, Condition condition) {
    auto& headers = request.headers;
    headers.erase(
        std::remove_if(headers.begin(), headers.end(), [&](const auto& header) { return condition(header.first); }),
        headers.end());
}

// RFC 9110, 15.4: 303 always turns into GET; 301 and 302 do for POST, as every browser has it; 307 and 308 never.
void ChangeMethod(CheckedRequest& request, long status) {
    if (request.post && (status == 301 || status == 302 || status == 303)) {
        request.post = false;
        request.body.clear();
        RemoveHeaders(request, [](const std::string& name) { return SameHeaderName(name, "Content-Type"); });
    }
}

}  // namespace

bool IsRedirectStatus(long status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

std::variant<CheckedRequest, std::string> FollowRedirect(const CheckedRequest& request, long status,
                                                         const std::string& location) {
    const std::optional<std::string> target = ResolveReference(request.url, location);
    const UrlParts& from = request.parts;
    const std::optional<UrlParts> to = target ? ParseUrl(*target) : std::nullopt;
    if (!to) {
        return "redirect to something that is not an http or https URL";
    }
    if (from.scheme == "https" && to->scheme == "http") {
        return "redirect from https to http";
    }
    CheckedRequest next = request;
    next.url = *target;
    next.parts = *to;
    ChangeMethod(next, status);
    if (!SameParty(from, *to)) {
        if (!next.body.empty()) {
            return "redirect of a request body to another host";
        }
        RemoveHeaders(next, [](const std::string& name) { return !IsPublicHeader(name); });
    }
    return next;
}

}  // namespace suite
