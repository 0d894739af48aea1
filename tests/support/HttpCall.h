#pragma once

#include <string>
#include <utility>
#include <vector>

#include "HttpLib.h"
#include "RawServer.h"

// One request with what the library said about it.
struct HttpCall {
    BasicHttpLibStrategy strategy;
    std::string response = "left from before";
    std::vector<std::wstring> progress;
    std::vector<std::wstring> errors;

    explicit HttpCall(const std::wstring& url, BasicHttpLibStrategy::HeaderMap headers = {}) {
        strategy.SetUrl(url);
        strategy.SetHeaders(headers);
        strategy.SetLogFunction([this](const std::wstring& text) { progress.push_back(text); });
        strategy.SetErrorLogFunction([this](const std::wstring& text) { errors.push_back(text); });
    }

    int Send(int timeoutSeconds = -1) { return CurlHttpLibContext(&strategy).Request(response, timeoutSeconds); }

    int Post(const std::wstring& body, int timeoutSeconds = -1) {
        strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
        strategy.SetPostData(body);
        return Send(timeoutSeconds);
    }
};

inline RawReply OkReply(const std::string& body = "ok", const std::string& headers = "") {
    return {RawReplyBytes("200 OK", headers, body)};
}
