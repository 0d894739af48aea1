#pragma once

#include <HttpLib.h>
#include <json/value.h>

#include <cstdint>
#include <map>
#include <string>

namespace userauth {

// The one status that the operations count as success; some of the basic service's take 201 too.
inline constexpr std::int32_t kHttpOk = 200;

// The timeout argument of every request: the HTTP library's own limits.
inline constexpr int kDefaultTimeout = -1;

// File of the certificate authorities that every request names to the HTTP library. Always empty: the library applies
// its own default.
inline constexpr wchar_t kCertificatePath[] = L"";

// Polymorphic holder of one JSON value: a request's body.
class JsonData {
public:
    JsonData() = default;
    explicit JsonData(Json::Value value);
    JsonData(const JsonData&) = default;
    JsonData& operator=(const JsonData&) = default;
    virtual ~JsonData();

    Json::Value m_value;
};

// Outcome of one exchange.
struct WebRequestResult {
    static constexpr std::size_t kResponseBytes = 40960;

    // HTTP status, or the HTTP library's own zero or negative code when no exchange took place.
    std::int32_t nHttpCode = 0;
    // Reply text, zero-terminated, cut at the first zero byte. A text that does not fit raises the invalid-parameter
    // condition (core/InvalidParameter.h) and leaves the field empty: a fixed limit that all callers rely on.
    char szResponse[kResponseBytes] = {};
};

// One outgoing request, used by one thread from construction to destruction. Sends block for the whole exchange and
// never throw; what the status and the text mean is the caller's business. The body goes to the HTTP library through
// code page 0. The order of the members is meant: they are released URL first and body last.
class UserAuthRequest {
public:
    using HeaderMap = std::map<std::wstring, std::wstring>;
    using ReplyHeaderMap = std::map<std::string, std::string>;

    UserAuthRequest() = default;
    virtual ~UserAuthRequest();
    UserAuthRequest(const UserAuthRequest&) = delete;
    UserAuthRequest& operator=(const UserAuthRequest&) = delete;

    void SetGetRequest(std::wstring url);
    void SetGetRequest(std::wstring url, HeaderMap headers);
    void SetPostRequest(std::wstring url, HeaderMap headers, const JsonData& body);

    // Compact body, own headers, with the HTTP library's error texts in the log.
    void SendWebRequest(WebRequestResult& result);
    // Styled body, own headers; receives the reply's headers.
    void SendWebRequest(WebRequestResult& result, ReplyHeaderMap& replyHeaders);
    // Styled body, the given headers instead of the own ones.
    void SendWebRequest(WebRequestResult& result, const HeaderMap& headers);

    // Downloads into the handler, with own headers, without body and certificate path. Returns the HTTP code.
    int SendDownRequest(FileTransferHandler* handler);

    // An operation may still change the method, the body and the headers between a setter and a send.
    HttpRequestMethod m_nMethod = HttpRequestMethod::kGet;
    JsonData m_body;

private:
    void DescribeBody(const HeaderMap& headers, const std::string& bodyText);

    BasicHttpLibStrategy m_strategy;

public:
    HeaderMap m_headers;

private:
    std::wstring m_strUrl;
};

}  // namespace userauth
