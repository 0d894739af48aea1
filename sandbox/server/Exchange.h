#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "RequestHead.h"

namespace sandbox {

// One request as an endpoint sees it.
struct PlatformRequest {
    std::string method;
    std::string path;                                    // without the query
    std::string query;                                   // as it stood on the wire, without the question mark
    std::multimap<std::string, std::string> parameters;  // the query, decoded
    std::string origin;                                  // scheme, address and port of the listener that was asked
    RequestHead head;
    std::string body;
};

inline constexpr const char* kContentTypeJson = "application/json;charset=UTF-8";

struct PlatformReply {
    int status = 200;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string contentType = kContentTypeJson;
};

}  // namespace sandbox
