// What a server or the system's settings tell the HTTP library.

#include <brotli/encode.h>
#include <zlib.h>

#include <algorithm>
#include <cstdarg>
#include <optional>

#include "FuzzTarget.h"
#include "http/ProxyRule.h"
#include "http/RedirectRule.h"
#include "http/ReplySink.h"

namespace {

using CurlCallback = std::size_t (*)(char* data, std::size_t one, std::size_t size, void* self);
CurlCallback g_onHeader = nullptr;
CurlCallback g_onBody = nullptr;
void* g_sink = nullptr;

}  // namespace

// Takes libcurl's place: what the sink asks to be called with is called here, without a transfer.
#undef curl_easy_setopt
#pragma clang diagnostic ignored "-Wvarargs"  // libcurl's own declaration
extern "C" CURLcode curl_easy_setopt(CURL*, CURLoption option, ...) {
    std::va_list values;
    va_start(values, option);
    if (option == CURLOPT_HEADERFUNCTION) {
        g_onHeader = va_arg(values, CurlCallback);
    } else if (option == CURLOPT_WRITEFUNCTION) {
        g_onBody = va_arg(values, CurlCallback);
    } else if (option == CURLOPT_WRITEDATA) {
        g_sink = va_arg(values, void*);
    }
    va_end(values);
    return CURLE_OK;
}

namespace {

// The reply's text as it comes in lines and then blocks of so many bytes; nothing when the sink refuses it.
std::optional<std::string> Receive(std::string bytes, std::size_t blockBytes, bool isHttps, FileTransferHandler* handler) {
    static CURL* const handle = curl_easy_init();
    suite::ReplySink sink(handler, true);
    sink.Attach(handle, isHttps);
    CURLcode result = CURLE_OK;
    for (std::size_t at = 0, size = 0; at < bytes.size() && result == CURLE_OK; at += size) {
        const bool inHead = !sink.HasHead();
        const std::size_t lineEnd = std::min(bytes.find('\n', at), bytes.size() - 1) + 1;
        size = inHead ? lineEnd - at : std::min(blockBytes, bytes.size() - at);
        const std::size_t taken = (inHead ? g_onHeader : g_onBody)(&bytes[at], 1, size, g_sink);
        result = taken == size ? CURLE_OK : CURLE_WRITE_ERROR;
    }
    const bool whole = sink.Finish(result);
    Require(!whole || sink.Failure().code == 0, "a whole reply with a failure");
    sink.TakeHeaders();
    return whole ? std::optional<std::string>(sink.TakeText()) : std::nullopt;
}

// Head and body in any shape: the blocks in which a reply comes do not decide about it.
void Reply(FuzzInput input) {
    const bool isHttps = input.Choice(2) == 1;
    const bool isDownload = input.Choice(2) == 1;
    const auto receive = [&](std::size_t blockBytes) {
        std::string file;
        FileTransferHandler handler;
        handler.SetWriteDataFunc([&file](const char* data, std::size_t& size, bool) { return file.append(data, size), true; });
        const auto text = Receive(input.Text(), blockBytes, isHttps, isDownload ? &handler : nullptr);
        return isDownload && text ? std::optional<std::string>(file) : text;
    };
    Require(receive(1) == receive(input.Text().size() + 1), "the blocks decide about a reply");
}

std::string Deflated(const std::string& text, int wrapping) {
    z_stream stream = {};
    deflateInit2(&stream, 6, Z_DEFLATED, wrapping, 8, Z_DEFAULT_STRATEGY);
    std::string coded(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(coded.data());
    stream.avail_out = static_cast<uInt>(coded.size());
    deflate(&stream, Z_FINISH);
    coded.resize(stream.total_out);
    deflateEnd(&stream);
    return coded;
}

std::string BrotliCoded(const std::string& text) {
    std::size_t size = BrotliEncoderMaxCompressedSize(text.size()) + 16;
    std::string coded(size, '\0');
    BrotliEncoderCompress(5, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_GENERIC, text.size(),
                          reinterpret_cast<const std::uint8_t*>(text.data()), &size,
                          reinterpret_cast<std::uint8_t*>(coded.data()));
    coded.resize(size);
    return coded;
}

std::string Chunked(const std::string& body, std::size_t chunkBytes) {
    std::string chunks;
    for (std::size_t at = 0; at < body.size(); at += chunkBytes) {
        const std::string chunk = body.substr(at, chunkBytes);
        constexpr char kDigits[] = "0123456789abcdef";
        chunks += {kDigits[chunk.size() / 16], kDigits[chunk.size() % 16], '\r', '\n'};
        chunks += chunk + "\r\n";
    }
    return chunks + "0\r\n\r\n";
}

// A text in a coding and in chunks: it arrives as it was, and not at all when it was cut or, with a sum, changed.
void Coded(FuzzInput input) {
    static constexpr const char* kNames[] = {"gzip", "deflate", "deflate", "br", "identity"};
    const std::size_t coding = input.Choice(std::size(kNames));
    const std::size_t chunkBytes = 1 + input.Choice(255);
    std::size_t cut = input.Choice(16);
    const std::size_t changed = input.Choice(256);
    const std::string& text = input.Text();
    static constexpr int kWrappings[] = {MAX_WBITS + 16, MAX_WBITS, -MAX_WBITS};
    std::string body = coding < 3 ? Deflated(text, kWrappings[coding]) : coding == 3 ? BrotliCoded(text) : text;
    const bool isChanged = coding < 2 && changed < body.size();
    if (isChanged) {
        body[changed] = static_cast<char>(body[changed] ^ 1);
    }
    body = Chunked(body, chunkBytes);
    cut = std::min(cut, body.size());
    const auto received = Receive(std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Encoding: ") +
                                      kNames[coding] + "\r\n\r\n" + body.substr(0, body.size() - cut),
                                  1 + chunkBytes / 2, true, nullptr);
    Require(cut == 0 || !received, "a cut reply passes for a whole one");
    Require(cut != 0 || isChanged || received == text, "a whole reply does not arrive");
    Require(!received || received == text, "a reply arrives changed");
}

// What stands behind "//", without user information, up to the path.
std::string Authority(const std::string& url) {
    const std::size_t begin = url.find("//") + 2;
    const std::string authority = url.substr(begin, url.find_first_of("/?#", begin) - begin);
    return authority.substr(authority.rfind('@') + 1);
}

void Redirect(FuzzInput input) {
    const suite::CheckedRequest request = {
        "https://portal.example.com/a/b?c", true, {{"Authorization", "at"}, {"Cookie", "c"}, {"Accept", "*"}}, "code"};
    const long status = 300 + static_cast<long>(input.Choice(9));
    const auto outcome = suite::FollowRedirect(request, status, input.Text());
    if (const auto* refusal = std::get_if<std::string>(&outcome)) {
        Require(!refusal->empty(), "a refusal without a reason");
        return;
    }
    const auto& next = std::get<suite::CheckedRequest>(outcome);
    Require(next.url.rfind("https://", 0) == 0, "a redirect out of https");
    Require(next.url.find_first_of(std::string(" \r\n\0", 4)) == std::string::npos, "a URL that forges a line");
    const std::string party = Authority(next.url);
    const bool stays = party == "portal.example.com" || party == "portal.example.com:443";
    Require(stays || (next.body.empty() && next.headers.size() == 1), "secrets go to another party");
}

void Proxy(FuzzInput input) {
    const std::vector<std::string> parts = input.Parts();
    const auto wide = [&parts](std::size_t part) {
        const std::string text = part < parts.size() ? parts[part] : "";
        return std::wstring(text.begin(), text.end());
    };
    const suite::ProxyTarget target = {L"https", wide(2), L"8443"};
    const std::wstring proxy = suite::ProxyBySettings(wide(0), wide(1), target);
    const std::size_t scheme = proxy.find(L"://");
    Require(wide(0).find(scheme == std::wstring::npos ? proxy : proxy.substr(scheme)) != std::wstring::npos ||
                wide(0).find(proxy.substr(scheme + 3)) != std::wstring::npos,
            "a proxy that no setting names");
    Require(suite::ProxyBySettings(wide(0), wide(1) + L";*", target).empty(), "a proxy although all is direct");
}

const FuzzTarget kTargets[] = {
    {"http-reply", Reply}, {"http-coded", Coded}, {"http-redirect", Redirect}, {"http-proxy", Proxy}};

}  // namespace
