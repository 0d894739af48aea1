#include "request/UserAuthRequest.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/BoundedFormat.h"
#include "core/JsonText.h"
#include "core/TextEncoding.h"
#include "request/RequestLog.h"

namespace userauth {
namespace {

// Each hook logs under its own qualified name; fixed here, because every compiler names a lambda differently.
constexpr char kCompactLogHook[] = "UserAuthRequest::SendWebRequest::<lambda_1>::operator ()";
constexpr char kCompactErrorHook[] = "UserAuthRequest::SendWebRequest::<lambda_2>::operator ()";
constexpr char kReplyHeaderLogHook[] = "UserAuthRequest::SendWebRequest::<lambda_3>::operator ()";
constexpr char kGivenHeaderLogHook[] = "UserAuthRequest::SendWebRequest::<lambda_4>::operator ()";
constexpr char kDownloadLogHook[] = "UserAuthRequest::SendDownRequest::<lambda_1>::operator ()";

// Runs one exchange and fills the caller's record; what the suite's libraries throw ends here, as "no exchange took
// place".
template <typename Exchange>
void FillResult(WebRequestResult& result, Exchange&& exchange) {
    std::int32_t code = 0;
    int length = 0;
    try {
        std::string response;
        code = exchange(response);
        length = CopyString(result.szResponse, WebRequestResult::kResponseBytes, response.c_str());
    } catch (...) {
        code = 0;
    }
    result.nHttpCode = code;
    // The rest of the record is zero, whatever the caller had in it.
    std::fill(result.szResponse + std::max(length, 0), std::end(result.szResponse), '\0');
}

}  // namespace

JsonData::JsonData(Json::Value value) : m_value(std::move(value)) {}

JsonData::~JsonData() {
    // The library's clear() throws on a plain text or number.
    if (m_value.isArray() || m_value.isObject()) {
        m_value.clear();
    }
}

UserAuthRequest::~UserAuthRequest() = default;

void UserAuthRequest::SetGetRequest(std::wstring url) {
    m_nMethod = HttpRequestMethod::kGet;
    m_strUrl = std::move(url);
}

void UserAuthRequest::SetGetRequest(std::wstring url, HeaderMap headers) {
    SetGetRequest(std::move(url));
    m_headers = std::move(headers);
}

void UserAuthRequest::SetPostRequest(std::wstring url, HeaderMap headers, const JsonData& body) {
    m_nMethod = HttpRequestMethod::kPost;
    m_strUrl = std::move(url);
    m_body.m_value = body.m_value;
    m_headers = std::move(headers);
}

void UserAuthRequest::SendWebRequest(WebRequestResult& result) {
    FillResult(result, [this](std::string& response) {
        m_strategy.SetUrl(m_strUrl);
        m_strategy.SetLogFunction(HttpLogHook(kSeveritySummary, kCompactLogHook));
        m_strategy.SetErrorLogFunction(HttpLogHook(kSeverityFailure, kCompactErrorHook));
        DescribeBody(m_headers, WriteCompactLine(m_body.m_value));
        return CurlHttpLibContext(&m_strategy).Request(response, kDefaultTimeout);
    });
}

void UserAuthRequest::SendWebRequest(WebRequestResult& result, ReplyHeaderMap& replyHeaders) {
    FillResult(result, [this, &replyHeaders](std::string& response) {
        m_strategy.SetUrl(m_strUrl);
        m_strategy.SetLogFunction(HttpLogHook(kSeveritySummary, kReplyHeaderLogHook));
        DescribeBody(m_headers, WriteStyledText(m_body.m_value));
        return CurlHttpLibContext(&m_strategy).Request(response, replyHeaders);
    });
}

void UserAuthRequest::SendWebRequest(WebRequestResult& result, const HeaderMap& headers) {
    FillResult(result, [this, &headers](std::string& response) {
        m_strategy.SetUrl(m_strUrl);
        m_strategy.SetLogFunction(HttpLogHook(kSeveritySummary, kGivenHeaderLogHook));
        DescribeBody(headers, WriteStyledText(m_body.m_value));
        return CurlHttpLibContext(&m_strategy).Request(response, kDefaultTimeout);
    });
}

int UserAuthRequest::SendDownRequest(FileTransferHandler* handler) {
    try {
        m_strategy.SetUrl(m_strUrl);
        m_strategy.SetLogFunction(HttpLogHook(kSeveritySummary, kDownloadLogHook));
        m_strategy.SetHttpRequestMethod(m_nMethod);
        m_strategy.SetHeaders(m_headers);
        std::string discarded;
        return CurlHttpLibContext(&m_strategy).Request(discarded, static_cast<void*>(handler));
    } catch (...) {
        return 0;
    }
}

// The body is described for every request, a GET included; what goes on the wire is the HTTP library's rule.
void UserAuthRequest::DescribeBody(const HeaderMap& headers, const std::string& bodyText) {
    m_strategy.SetHttpRequestMethod(m_nMethod);
    m_strategy.SetHeaders(headers);
    m_strategy.SetCertPath(kCertificatePath);
    m_strategy.SetPostData(MultiByteToWide(bodyText, kAnsiCodePage));
}

}  // namespace userauth
