#pragma once

#include <string>

#include "request/UserAuthRequest.h"

namespace userauth {

// URL of a resource of the key service, with its query: the base URL, the service's path and the rest.
std::wstring KeyServiceUrl(const std::wstring& rest);

// The headers that both requests carry: who asks, by the access token and the user id of this moment, and which client.
UserAuthRequest::HeaderMap KeyServiceHeaders();

// Asks the key service; no body.
void SendKeyServiceRequest(const std::wstring& url, const UserAuthRequest::HeaderMap& headers,
                           WebRequestResult& result);

}  // namespace userauth
