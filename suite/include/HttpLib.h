#pragma once

/// @file
/// The suite's HTTP library.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "SuiteExport.h"

/// Method numbers of the suite: a GET sends no body even when post data was set.
enum class HttpRequestMethod : int {
    kGet = 0,   ///< without a body
    kPost = 1,  ///< with the post data, perhaps empty
};

/// What CurlHttpLibContext::Request returns instead of an HTTP status when no exchange took place or it did not
/// complete.
enum HttpTransportError : int {
    /// Not an http(s) URL; CR, LF or NUL in the URL or a header value; a header name that is no token (RFC 9110,
    /// 5.6.2); two names that differ only in letter case; an unknown method.
    kHttpInvalidRequest = -1,
    kHttpNameNotResolved = -2,         ///< the host or proxy name has no address
    kHttpConnectFailed = -3,           ///< nobody accepts the connection, or the proxy refuses it
    kHttpTimeout = -4,                 ///< connect, stall or total time limit; a download below its pace
    kHttpCertificateUntrusted = -5,    ///< not trusted: unknown authority, expired, revoked, wrong purpose
    kHttpCertificateWrongName = -6,    ///< trusted, but for another host; a common name alone names none
    kHttpTlsFailed = -7,               ///< any other TLS failure, versions below 1.2 included
    kHttpCertificateFileInvalid = -8,  ///< the certificate file: unreadable, empty or one in it damaged (https only)
    kHttpConnectionBroken = -9,        ///< cut or reset, or a reply that is not whole: see CurlHttpLibContext
    kHttpReplyTooLarge = -10,          ///< a reply beyond a limit of size: see CurlHttpLibContext
    kHttpBadEncoding = -11,            ///< the content encoding is not known, cut, or could not be undone
    kHttpRedirectRefused = -12,        ///< over five, to another scheme, from https to http, or a body to another host
    kHttpWriteRefused = -13,           ///< the download's write function returned false or threw
    kHttpInternalError = -14,          ///< out of memory, or an error that has no code of its own
};

/// What a strategy tells a context. Implemented by BasicHttpLibStrategy.
class HTTPLIB_API IHttpLibStrategy {
public:
    virtual ~IHttpLibStrategy();  ///< Nothing to release.

    /// @return the URL
    virtual const std::wstring& Url() const = 0;
    /// @return the method
    virtual HttpRequestMethod Method() const = 0;
    /// @return the headers, name to value
    virtual const std::map<std::wstring, std::wstring>& Headers() const = 0;
    /// @return the body of a POST
    virtual const std::wstring& PostData() const = 0;
    /// @return the file of certificate authorities; empty: the default
    virtual const std::wstring& CertPath() const = 0;
    /// @param message  what goes on
    virtual void Log(const std::wstring& message) const = 0;
    /// @param message  why the request failed
    virtual void LogError(const std::wstring& message) const = 0;
};

/// The description of one request. Used by one thread at a time.
class HTTPLIB_API BasicHttpLibStrategy : public IHttpLibStrategy {
public:
    using LogFunction = std::function<void(const std::wstring&)>;  ///< Receives one text.
    using HeaderMap = std::map<std::wstring, std::wstring>;        ///< Name to value.

    BasicHttpLibStrategy();            ///< A GET without URL and headers.
    ~BasicHttpLibStrategy() override;  ///< Any time but during the request.
    BasicHttpLibStrategy(const BasicHttpLibStrategy&) = delete;
    BasicHttpLibStrategy& operator=(const BasicHttpLibStrategy&) = delete;

    /// Absolute http or https URL; blanks, control characters and characters outside ASCII go out as percent-escaped
    /// UTF-8. A host name outside ASCII does not resolve.
    /// @param url  UTF-16
    void SetUrl(const std::wstring& url);
    /// @param method  kGet until it is set
    void SetHttpRequestMethod(HttpRequestMethod method);

    /// Replaces the headers. Values go out in UTF-8; an empty value is sent as a header with an empty value.
    /// "Content-Length", "Transfer-Encoding" and "Expect" are the library's own business and are left out.
    /// @param headers  name to value
    void SetHeaders(const HeaderMap& headers);
    /// Replaces the headers by the suite's standard set: "userId", "appId", "Authorization" ("Bearer " and the token)
    /// and "Content-Type" = "application/json".
    /// @param userId         the user id
    /// @param applicationId  the application id
    /// @param accessToken    the access token
    void SetHeaders(const std::wstring& userId, const std::wstring& applicationId, const std::wstring& accessToken);
    /// @return the headers as they were set
    const HeaderMap& GetHeaders() const;

    /// @param body  of a POST, sent in UTF-8
    void SetPostData(const std::wstring& body);

    /// PEM file, 8 MB at most, of the only certificate authorities to trust for this request; empty takes the default
    /// (SetDefaultCertPath). Each certificate in it is trusted as it stands, an intermediate authority or a server's
    /// own too; revocation lists in it do not count. What is written to the file counts from the next request on.
    /// @param path  of the file
    void SetCertPath(const std::wstring& path);

    /// @param function  receives the library's progress texts, on the requesting thread; empty: nobody does
    void SetLogFunction(LogFunction function);
    /// @param function  receives the library's error texts, on the requesting thread; empty: nobody does
    void SetErrorLogFunction(LogFunction function);

    const std::wstring& Url() const override;
    HttpRequestMethod Method() const override;
    const std::map<std::wstring, std::wstring>& Headers() const override;
    const std::wstring& PostData() const override;
    const std::wstring& CertPath() const override;
    void Log(const std::wstring& message) const override;
    void LogError(const std::wstring& message) const override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Sink of a download. Used by one thread at a time.
class HTTPLIB_API FileTransferHandler {
public:
    /// Receives one block: its bytes, their count and whether it is the final call (then without bytes, after the last
    /// block of a complete transfer). False ends the transfer.
    using WriteDataFunction = std::function<bool(const char* data, std::size_t& size, bool finalBlock)>;

    FileTransferHandler();   ///< Without a function: every block is refused.
    ~FileTransferHandler();  ///< Any time but during the download.
    FileTransferHandler(const FileTransferHandler&) = delete;
    FileTransferHandler& operator=(const FileTransferHandler&) = delete;

    /// @param function  receives the blocks, on the requesting thread
    void SetWriteDataFunc(WriteDataFunction function);
    /// Calls the function; what it throws comes out.
    /// @param data        the bytes
    /// @param size        how many
    /// @param finalBlock  whether it is the final call
    /// @return what the function returned
    bool WriteData(const char* data, std::size_t size, bool finalBlock);

    /// Bytes that a download may have after decoding, 2 GiB when nothing is set. A larger one ends with
    /// kHttpReplyTooLarge: at once when its length is announced, else before the block that goes beyond.
    /// @param bytes  the most
    void SetMaxSize(std::uint64_t bytes);
    /// @return the most bytes
    std::uint64_t MaxSize() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// One finished exchange, for observers. The URL has no query.
struct HttpExchange {
    std::wstring method;            ///< "GET" or "POST"
    std::wstring url;               ///< as it was asked for
    int code = 0;                   ///< HTTP status or HttpTransportError
    double milliseconds = 0;        ///< from the call to its end
    bool connectionReused = false;  ///< whether a kept connection served it
};

/// Executes a strategy, synchronously, on the calling thread; contexts on different threads share connections, TLS
/// sessions and name look-ups. Nothing is thrown, and exceptions of the strategy's log functions and of the observers
/// are dropped. Certificates and host names are always checked, TLS 1.2 at least. While the process ends (its other
/// threads are gone) every request fails with kHttpInternalError.
///
/// Trust: without a PEM file of authorities Windows judges the certificates: by its stores, the authorities that it
/// fetches when they are asked for, the certificates that it refuses, and the machine's policy. Revocation counts as
/// far as Windows has it cached; where it has not, the certificate is good. The verdict falls in the handshake: an
/// authority that is removed afterwards counts on for connections that are kept (118 s idle at most) and for TLS
/// sessions that the server resumes. SSL_CERT_FILE, SSL_CERT_DIR, SSLKEYLOGFILE, OPENSSL_CONF and OpenSSL's
/// configuration file change nothing.
///
/// Proxy: the environment's (http_proxy, https_proxy, all_proxy, no_proxy) first, then the system's static setting, its
/// SOCKS proxy too; for loopback addresses never one. Proxy scripts (PAC) and automatic detection are not read. Whoever
/// judges an https host's certificate judges that of its https proxy; an http host's https proxy is always refused.
///
/// Redirects: five at most; to another host no body goes along, and of the headers only Accept, Accept-Encoding,
/// Accept-Language, Cache-Control, Content-Type and User-Agent.
///
/// A request, a POST too, is sent a second time when a kept connection turns out closed before the first line of the
/// reply was whole: deliberate, because servers close idle connections at any moment. The server may have seen both.
///
/// A reply counts when it is whole, to its last byte; anything less is kHttpConnectionBroken:
/// - Its head begins with an HTTP/1.0 or 1.1 status line and ends with an empty line. An interim reply (1xx) is none.
/// - Its body has the announced length, or all of its chunks. Without either it ends with an orderly close over http;
///   over https it is refused, because a cut TLS connection looks the same.
/// - It says so in one way: two lengths that differ, a length beside chunks, a length that is no number, a transfer
///   coding other than "chunked", or such a field continued on a second line are refused.
///
/// A redirect, and the error page of a download, are whole at the end of their head.
/// Bytes behind a reply's end are dropped together with the connection.
///
/// Encodings that are undone, asked for or not: gzip (x-gzip), deflate (with zlib's wrapping or raw) and br, one at a
/// time, a single gzip member. The encoded body must come to its own end, with nothing behind it; an empty body under
/// an encoding is kHttpBadEncoding, but for the statuses 204 and 304.
///
/// kHttpReplyTooLarge: headers of more than 256 KiB or 1,000 lines, or one line of more than 100 KiB; chunk extensions
/// and trailers of more than 256 KiB; a text of more than 16 MiB after decoding; a download beyond its handler's limit;
/// an encoded body that unfolds to more than 200 times its size, the first MiB excepted, or that is itself a MiB larger
/// than what it may unfold to; an announced length of more than 18 digits.
class HTTPLIB_API CurlHttpLibContext {
public:
    /// @param strategy  not null, must outlive the context
    explicit CurlHttpLibContext(IHttpLibStrategy* strategy);
    ~CurlHttpLibContext();  ///< Keeps the connection for others.
    CurlHttpLibContext(const CurlHttpLibContext&) = delete;
    CurlHttpLibContext& operator=(const CurlHttpLibContext&) = delete;

    /// Performs the exchange; returns the HTTP status or an HttpTransportError. response receives the decoded body,
    /// empty on a transport error. Connecting may take 15 s, and 30 s without a byte of the body (its headers
    /// are none) end the exchange.
    /// @param response        receives the text
    /// @param timeoutSeconds  limit for the whole exchange; -1 (or 0) means 300. Only Windows' verdict on a certificate
    /// may take longer: it waits 5 s for each thing that it fetches.
    /// @return the HTTP status, or an HttpTransportError
    int Request(std::string& response, int timeoutSeconds);
    /// As above with the default limits. replyHeaders is replaced by the final reply's headers, names as they came;
    /// values of a name that comes more than once are joined with ", ".
    /// @param response      receives the text
    /// @param replyHeaders  empty after a transport error
    /// @return the HTTP status, or an HttpTransportError
    int Request(std::string& response, std::map<std::string, std::string>& replyHeaders);
    /// Download form: the decoded body of a reply with a status of 200 to 299 goes to the FileTransferHandler that
    /// fileTransferHandler points to; that of any other status, an error page, is dropped, and read for 64 KiB at most.
    /// response stays empty. No limit for the whole exchange, but a body of which less than 60 KiB come within a minute
    /// is kHttpTimeout; the time that the handler takes does not count.
    /// @param response             emptied
    /// @param fileTransferHandler  a FileTransferHandler, not null
    /// @return the HTTP status, or an HttpTransportError
    int Request(std::string& response, void* fileTransferHandler);

    /// Sets the authorities for requests that name no certificate path. Any thread.
    /// @param path  a PEM file, or empty for Windows' verdict
    static void SetDefaultCertPath(const std::wstring& path);

    /// Sets who is told of every exchange of the process. Any thread.
    /// @param observer  called after the exchange, on its thread; empty removes it
    static void SetExchangeObserver(std::function<void(const HttpExchange&)> observer);

    /// Sets who is told the size of every download of the process whose reply announces it: the body has a
    /// Content-Length and no content encoding. Any thread.
    /// @param observer  called on the download's thread, before its first block, with the bytes that will come when
    /// the reply is whole; empty removes it
    static void SetDownloadObserver(std::function<void(std::uint64_t)> observer);

private:
    IHttpLibStrategy* m_strategy;
};
