#include "RedirectRule.h"
#include "UrlText.h"

// For an HTTP library that takes headers and body along wherever it is sent.
namespace suite {

bool IsRedirectStatus(long status) { return status >= 301 && status <= 308; }

std::variant<CheckedRequest, std::string> FollowRedirect(const CheckedRequest& request, long /*status*/,
                                                         const std::string& location) {
    CheckedRequest next = request;
    next.url = ResolveReference(request.url, location).value_or(request.url);
    return next;
}

}  // namespace suite
