#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "HttpLib.h"
#include "RawServer.h"

// The library's ways to ask: for the text alone, with the reply's headers, for a download.
enum class RequestForm { kText, kHeaders, kDownload };
constexpr RequestForm kRequestForms[] = {RequestForm::kText, RequestForm::kHeaders, RequestForm::kDownload};

// One request with what the library said about it.
struct HttpCall {
    BasicHttpLibStrategy strategy;
    std::string response = "left from before";
    std::vector<std::wstring> progress;
    std::vector<std::wstring> errors;
    std::map<std::string, std::string> headers = {{"Stale", "1"}};
    FileTransferHandler handler;
    std::string received;  // by the handler; "." for the final call

    explicit HttpCall(const std::wstring& url, const BasicHttpLibStrategy::HeaderMap& requestHeaders = {}) {
        strategy.SetUrl(url);
        strategy.SetHeaders(requestHeaders);
        strategy.SetLogFunction([this](const std::wstring& text) { progress.push_back(text); });
        strategy.SetErrorLogFunction([this](const std::wstring& text) { errors.push_back(text); });
    }

    int Send(int timeoutSeconds = -1) { return CurlHttpLibContext(&strategy).Request(response, timeoutSeconds); }

    int SendAs(RequestForm form) {
        CurlHttpLibContext context(&strategy);
        handler.SetWriteDataFunc([this](const char* data, std::size_t& size, bool finalBlock) {
            received.append(data, size).append(finalBlock ? "." : "");
            return true;
        });
        return form == RequestForm::kText      ? context.Request(response, -1)
               : form == RequestForm::kHeaders ? context.Request(response, headers)
                                               : context.Request(response, &handler);
    }

    // What the request brought; a download's must have been told of its end.
    std::string BodyOf(RequestForm form) const {
        const bool complete = !received.empty() && received.back() == '.';
        return form == RequestForm::kDownload && complete ? received.substr(0, received.size() - 1) : response;
    }

    int Post(const std::wstring& body, int timeoutSeconds = -1) {
        strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
        strategy.SetPostData(body);
        return Send(timeoutSeconds);
    }
};

inline RawReply OkReply(const std::string& body = "ok", const std::string& headers = "") {
    return {RawReplyBytes("200 OK", headers, body)};
}
