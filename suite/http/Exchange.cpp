#include "Exchange.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <optional>

#include "CertificateAuthorities.h"
#include "CurlHandlePool.h"
#include "HeaderText.h"
#include "ProxySettings.h"
#include "RedirectRule.h"
#include "TlsTrust.h"
#include "UrlText.h"

namespace suite {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kConnectTimeoutSeconds = 15;
constexpr long kStallSeconds = 30;
// Of a text reply when the caller gives none. A download may take as long as it keeps up its pace.
constexpr int kTextTimeoutSeconds = 300;
// libcurl's largest: it reads a download in half the time that its usual 16 KiB take.
constexpr long kDownloadBufferBytes = 512 * 1024;
// libcurl counts milliseconds in a 32-bit long.
constexpr int kMaxTimeoutSeconds = 1000000;

struct ListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, ListDeleter>;

void Append(HeaderList& list, const std::string& line) {
    curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr) {
        throw std::bad_alloc();
    }
    list.release();  // NOLINT: the longer list owns it
    list.reset(longer);
}

// In libcurl's notation "Name;" sends an empty value and "Name:" keeps back a header that libcurl would add.
HeaderList BuildHeaderList(const CheckedRequest& request) {
    HeaderList list;
    for (const auto& [name, value] : request.headers) {
        Append(list, value.empty() ? name + ";" : name + ": " + value);
    }
    for (const char* unasked : {"Accept-Encoding", "Content-Type", "Expect"}) {
        const bool given = std::any_of(request.headers.begin(), request.headers.end(),
                                       [unasked](const auto& header) { return SameHeaderName(header.first, unasked); });
        if (!given) {
            Append(list, std::string(unasked) + ":");
        }
    }
    return list;
}

void SetRequestOptions(CURL* handle, const CheckedRequest& request, curl_slist* headers) {
    SetCurlOption(handle, CURLOPT_URL, request.url.c_str());
    SetCurlOption(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    SetCurlOption(handle, CURLOPT_FOLLOWLOCATION, 0L);
    SetCurlOption(handle, CURLOPT_HTTPHEADER, headers);
    // How a reply is framed is judged by the rules of this version; see ReplyHead.
    SetCurlOption(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    SetCurlOption(handle, CURLOPT_HTTP09_ALLOWED, 0L);
    if (request.post) {
        SetCurlOption(handle, CURLOPT_POST, 1L);
        SetCurlOption(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        SetCurlOption(handle, CURLOPT_POSTFIELDS, request.body.c_str());
    } else {
        SetCurlOption(handle, CURLOPT_HTTPGET, 1L);
    }
}

void SetConnectionOptions(CURL* handle, const UrlParts& url) {
    SetCurlOption(handle, CURLOPT_NOSIGNAL, 1L);
    SetCurlOption(handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
    SetCurlOption(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    SetCurlOption(handle, CURLOPT_LOW_SPEED_TIME, kStallSeconds);
    SetCurlOption(handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    if (const std::optional<std::string> proxy = ProxyFor(url)) {
        SetCurlOption(handle, CURLOPT_PROXY, proxy->c_str());
    }
}

long InfoOf(CURL* handle, CURLINFO info) {
    long value = 0;
    curl_easy_getinfo(handle, info, &value);
    return value;
}

// A proxy's refusal of the tunnel to an https host reaches libcurl's caller as a broken connection. The proxy is named
// by its address: its setting may hold a password.
std::optional<TransportFailure> TunnelRefusal(CURL* handle) {
    const long status = InfoOf(handle, CURLINFO_HTTP_CONNECTCODE);
    if (status < 300) {
        return std::nullopt;
    }
    char* address = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIMARY_IP, &address);
    return TransportFailure{kHttpConnectFailed, "the proxy " + std::string(address != nullptr ? address : "") +
                                                    " port " + std::to_string(InfoOf(handle, CURLINFO_PRIMARY_PORT)) +
                                                    " refused the connection with status " + std::to_string(status)};
}

class Exchange {
public:
    Exchange(const std::wstring& certPath, int timeoutSeconds, ReplySink& sink) : m_certPath(certPath), m_sink(sink) {
        if (timeoutSeconds <= 0 && !sink.IsDownload()) {
            timeoutSeconds = kTextTimeoutSeconds;
        }
        if (timeoutSeconds > 0) {
            m_deadline = Clock::now() + std::chrono::seconds(std::min(timeoutSeconds, kMaxTimeoutSeconds));
        }
    }

    ExchangeOutcome Run(CheckedRequest request) {
        for (int redirects = 0; SendOnce(request) && !m_sink.RedirectTarget().empty(); ++redirects) {
            if (redirects == kMaxRedirects) {
                Fail({kHttpRedirectRefused, "more than five redirects"});
                break;
            }
            auto next = FollowRedirect(request, m_outcome.code, m_sink.RedirectTarget());
            if (const auto* refusal = std::get_if<std::string>(&next)) {
                Fail({kHttpRedirectRefused, *refusal});
                break;
            }
            request = std::get<CheckedRequest>(std::move(next));
        }
        m_outcome.connectionReused = m_connectionsTaken > 0 && m_connectionsMade == 0;
        return std::move(m_outcome);  // a copy may want memory when a download has been told of its end
    }

private:
    // One hop. True when its reply is complete; m_outcome.code is its status then.
    bool SendOnce(const CheckedRequest& request) {
        m_outcome.host = request.parts.authority;
        m_handle = LeaseCurlHandle(request.parts.scheme + "://" + request.parts.authority);
        if (!m_handle) {
            return Fail({kHttpInternalError, "libcurl cannot be started"});
        }
        CURL* const handle = m_handle->easy;
        const bool isHttps = request.parts.scheme == "https";
        std::array<char, CURL_ERROR_SIZE> detail = {};
        const HeaderList headers = BuildHeaderList(request);
        SetRequestOptions(handle, request, headers.get());
        SetConnectionOptions(handle, request.parts);
        if (m_sink.IsDownload()) {
            // Refused while the handle still holds the buffer of a request that could not begin; that one will do.
            curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kDownloadBufferBytes);
        }
        SetSocketOptions(*m_handle);
        m_address = AddressOf(request.parts);
        if (isHttps && !SetAuthorities()) {
            return false;
        }
        SetCurlOption(handle, CURLOPT_ERRORBUFFER, detail.data());
        if (!SetRemainingTime()) {
            return Fail({kHttpTimeout, "time limit reached"});
        }
        m_sink.Attach(handle, isHttps);
        // A kept connection that ends before the first line of the reply is whole makes libcurl send the request, a
        // POST too, once more on a new one. Deliberate: else a server that closes an idle connection at the wrong
        // moment would fail a login.
        const CURLcode result = curl_easy_perform(handle);
        const bool complete = Judge(result, detail.data());
        // Given back between the hops too: the options point into this frame, and the pool looks at the connections of
        // what it hands out.
        m_handle.reset();
        return complete;
    }

    bool Judge(CURLcode result, const char* detail) {
        CURL* const handle = m_handle->easy;
        m_connectionsMade += InfoOf(handle, CURLINFO_NUM_CONNECTS);
        m_connectionsTaken += InfoOf(handle, CURLINFO_REQUEST_SIZE) > 0 ? 1 : 0;
        m_outcome.code = static_cast<int>(InfoOf(handle, CURLINFO_RESPONSE_CODE));
        if (result == CURLE_OK && m_sink.EndsWithConnection() && m_handle->lastCloseWasReset) {
            result = CURLE_RECV_ERROR;
        }
        if (m_sink.Finish(result)) {
            return true;
        }
        if (m_sink.Failure().code != 0) {
            return Fail(m_sink.Failure());
        }
        if (result == CURLE_OUT_OF_MEMORY && InfoOf(handle, CURLINFO_REQUEST_SIZE) > 0 && !m_sink.HasHead()) {
            return Fail({kHttpReplyTooLarge, "a header line of the reply is too large"});
        }
        const std::optional<TransportFailure> refusal = TunnelRefusal(handle);
        // Of the two handshakes one at most has failed; the other says 0, or 1 when it was not judged.
        const long verified =
            std::max(InfoOf(handle, CURLINFO_SSL_VERIFYRESULT), InfoOf(handle, CURLINFO_PROXY_SSL_VERIFYRESULT));
        return Fail(refusal ? *refusal : DescribeFailure(result, detail, verified));
    }

    bool SetAuthorities() {
        m_authorities = AuthoritiesFor(m_certPath);
        if (!m_authorities) {
            return Fail({kHttpCertificateFileInvalid,
                         "the certificate file cannot be read, holds no certificate or one that is not whole"});
        }
        SetTlsOptions(m_handle->easy, *m_authorities, m_address);
        return true;
    }

    bool SetRemainingTime() {
        if (!m_deadline) {
            return true;
        }
        const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(*m_deadline - Clock::now()).count();
        if (remaining <= 0) {
            return false;
        }
        SetCurlOption(m_handle->easy, CURLOPT_TIMEOUT_MS, static_cast<long>(remaining));
        return true;
    }

    bool Fail(const TransportFailure& failure) {
        m_outcome.code = failure.code;
        m_outcome.cause = failure.cause.empty() ? "out of memory" : failure.cause;
        return false;
    }

    const std::wstring& m_certPath;
    ReplySink& m_sink;
    std::optional<Clock::time_point> m_deadline;
    // These outlive the handle's options, which point into them.
    std::shared_ptr<const Authorities> m_authorities;
    std::string m_address;
    CurlLease m_handle;
    ExchangeOutcome m_outcome;
    long m_connectionsMade = 0;
    long m_connectionsTaken = 0;
};

}  // namespace

ExchangeOutcome PerformExchange(CheckedRequest request, const std::wstring& certPath, int timeoutSeconds,
                                ReplySink& sink) {
    return Exchange(certPath, timeoutSeconds, sink).Run(std::move(request));
}

}  // namespace suite
