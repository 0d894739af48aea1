#pragma once

#include <string>
#include <vector>

#include "HttpCall.h"

// What HttpLib.h promises of single requests and replies, as rows: for the conformance program and the library's tests.

// A request as it must arrive.
struct SentCase {
    const char* name;
    std::string sent;     // in the request's bytes
    std::string notSent;  // not in them; "?": nothing
    BasicHttpLibStrategy::HeaderMap headers = {};
    bool post = false;
    std::wstring postData = {};
    std::wstring path = L"/";
};
std::vector<SentCase> SentCases();

// A request beside a header "X-Twice" that is refused with that code, or not.
struct RefusedCase {
    const char* name;
    std::wstring headerName;
    std::wstring headerValue;
    std::wstring path;
    int expected = kHttpInvalidRequest;
};
std::vector<RefusedCase> RefusedCases();

// Replies that are cut, the last one excepted, whose text is kCutText; the code of all others.
struct CutCase {
    const char* name;
    std::vector<RawReply> script;
    int code;
};
std::vector<CutCase> CutCases();
constexpr char kCutText[] = "decoded text";

// An ambiguous or overlong reply, or one that only looks so. To a redirect's next request the server answers "next".
struct ReplyCase {
    const char* name;
    int code;
    RawReply reply;
    const char* body = "ok";
};
std::vector<ReplyCase> ReplyCases();

// A download whose handler allows five bytes; what the handler receives, "." for the final call.
struct DownloadCase {
    const char* name;
    int code;
    RawReply reply;
    const char* received;
};
std::vector<DownloadCase> DownloadCases();
