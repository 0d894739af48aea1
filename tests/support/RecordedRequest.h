#pragma once

#include <map>
#include <sstream>
#include <string>

#include "HttpCall.h"
#include "SandboxSession.h"

// A request as the sandbox received it, to be sent again.
struct RecordedRequest {
    using HeaderMap = std::map<std::wstring, std::wstring>;

    std::string method;
    std::string target;
    HeaderMap headers;  // without those that the HTTP library adds by itself
    std::string body;

    explicit RecordedRequest(const Json::Value& recorded) : body(recorded["body"].asString()) {
        std::istringstream head(recorded["head"].asString());
        std::string line;
        head >> method >> target;
        std::getline(head, line);
        while (std::getline(head, line) && line.size() > 1) {
            const std::size_t colon = line.find(':');
            const std::string name = line.substr(0, colon);
            const std::string value = line.size() > colon + 3 ? line.substr(colon + 2, line.size() - colon - 3) : "";
            if (name != "Content-Length" && value != "*/*" &&
                (name != "Host" || value.find(':') == std::string::npos)) {
                headers[Wide(name)] = Wide(value);
            }
        }
    }

    // The first place of a text, in target or body, becomes another.
    void Replace(const std::string& from, const std::string& to) {
        std::string& part = target.find(from) != std::string::npos ? target : body;
        const std::size_t at = part.find(from);
        ASSERT_NE(at, std::string::npos) << from << " in " << target << " " << body;
        part.replace(at, from.size(), to);
    }

    // The reply's status, and its text behind a blank.
    std::string SendTo(const SandboxServer& sandbox, const HeaderMap& otherHeaders, const std::string& otherBody,
                       const std::string& query = "") const {
        HttpCall call(sandbox.Url(target + query), otherHeaders);
        const int code = method == "POST" ? call.Post(Wide(otherBody), 20) : call.Send(20);
        return std::to_string(code) + " " + call.response;
    }
};
