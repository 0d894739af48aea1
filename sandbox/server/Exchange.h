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
    RequestHead head;
    std::string body;
};

// What an endpoint answers; the content type is always JSON.
struct PlatformReply {
    int status = 200;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
};

}  // namespace sandbox
