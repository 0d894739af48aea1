#pragma once

#include <string>
#include <variant>

#include "RequestCheck.h"

namespace suite {

constexpr int kMaxRedirects = 5;

// Whether a status asks for the request to be sent elsewhere (given a Location).
bool IsRedirectStatus(long status);

// The request that follows a redirect reply, or the reason why it is not followed. A method changed to GET loses its
// body. Towards another party only headers that say nothing about the user go along, and a body never does: the
// platform's requests carry tokens in both.
std::variant<CheckedRequest, std::string> FollowRedirect(const CheckedRequest& request, long status,
                                                         const std::string& location);

}  // namespace suite
