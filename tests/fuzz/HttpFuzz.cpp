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

using Received = std::optional<std::string>;

// The body of a reply that comes in lines and then in blocks of so many bytes; nothing when the sink refuses it.
Received Receive(std::string bytes, std::size_t blockBytes, bool isHttps, bool isDownload) {
    static CURL* const handle = curl_easy_init();
    std::string file;
    FileTransferHandler handler;
    handler.SetWriteDataFunc(
        [&file](const char* data, std::size_t& size, bool) { return file.append(data, size), true; });
    suite::ReplySink sink(isDownload ? &handler : nullptr, true);
    sink.Attach(handle, isHttps);
    CURLcode result = CURLE_OK;
    for (std::size_t at = 0, size = 0; at < bytes.size() && result == CURLE_OK; at += size) {
        const bool inHead = !sink.HasHead();
        size = inHead ? std::min(bytes.find('\n', at), bytes.size() - 1) + 1 - at
                      : std::min(blockBytes, bytes.size() - at);
        result = (inHead ? g_onHeader : g_onBody)(&bytes[at], 1, size, g_sink) == size ? CURLE_OK : CURLE_WRITE_ERROR;
    }
    const bool whole = sink.Finish(result);
    Require(!whole || sink.Failure().code == 0, "a whole reply with a failure");
    sink.TakeHeaders();
    return whole ? Received(isDownload ? file : sink.TakeText()) : std::nullopt;
}

// Head and body in any shape: the blocks in which a reply comes do not decide about it. Two "^" are more fields than a
// head may have.
void Reply(FuzzInput input) {
    const bool isHttps = input.Choice(2) == 1;
    const bool isDownload = input.Choice(2) == 1;
    static const std::string fields = Expanded(std::string(600, '^'), "^", "a:b\r\n");
    const std::string text = Stretched(input.text, '^', fields);
    Require(Receive(text, 1, isHttps, isDownload) == Receive(text, 1 << 20, isHttps, isDownload),
            "the blocks decide about a reply");
}

// The text in gzip, zlib's wrapping, raw deflate, br or nothing. Small windows: making large ones would take longest.
std::string Encoded(const std::string& text, std::size_t coding) {
    constexpr int kWindowBits = 10;
    constexpr int kWrappings[] = {kWindowBits + 16, kWindowBits, -kWindowBits};
    if (coding > 3) {
        return text;
    }
    std::string coded(text.size() * 2 + 1024, '\0');
    auto* const out = reinterpret_cast<Bytef*>(coded.data());
    std::size_t size = coded.size();
    if (coding == 3) {
        BrotliEncoderCompress(5, kWindowBits, BROTLI_MODE_GENERIC, text.size(),
                              reinterpret_cast<const std::uint8_t*>(text.data()), &size, out);
        return coded.substr(0, size);
    }
    z_stream stream = {};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kWrappings[coding], 1, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = out;
    stream.avail_out = static_cast<uInt>(size);
    deflate(&stream, Z_FINISH);
    deflateEnd(&stream);
    return coded.substr(0, stream.total_out);
}

std::string Chunked(const std::string& body, std::size_t chunkBytes) {
    std::string chunks;
    for (std::size_t at = 0; at < body.size(); at += chunkBytes) {
        const std::string chunk = body.substr(at, chunkBytes);
        chunks += {"0123456789abcdef"[chunk.size() / 16], "0123456789ABCDEF"[chunk.size() % 16], '\r', '\n'};
        chunks += chunk + "\r\n";
    }
    return chunks + "0\r\n\r\n";
}

// A text in a coding and in chunks: it arrives as it was, and not at all when it was cut or, with a sum, changed.
void Coded(FuzzInput input) {
    static constexpr const char* kNames[] = {"gzip", "deflate", "deflate", "br", "identity"};
    const std::size_t coding = input.Choice(std::size(kNames));
    const std::size_t chunkBytes = 1 + input.Choice(255);
    const std::size_t cut = input.Choice(6);  // within the last chunk
    const std::size_t changed = input.Choice(256);
    for (std::size_t doublings = input.Choice(8); doublings > 0 && input.text.size() < 65536; --doublings) {
        input.text += input.text;
    }
    std::string body = Encoded(input.text, coding);
    const bool isChanged = coding < 2 && changed < body.size();
    if (isChanged) {
        body[changed] = static_cast<char>(body[changed] ^ 1);
    }
    std::string reply = std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Encoding: ") +
                        kNames[coding] + "\r\n\r\n" + Chunked(body, chunkBytes);
    reply.resize(reply.size() - cut);
    const Received received = Receive(reply, 1 + chunkBytes / 2, true, false);
    Require(cut == 0 || !received, "a cut reply passes for a whole one");
    Require(cut != 0 || isChanged || received, "a whole reply does not arrive");
    Require(!received || received == input.text, "a reply arrives changed");
}

// Scheme, host and port in small letters: without user information, an address's zone, and the scheme's own port.
std::string Party(const std::string& url) {
    const std::size_t colon = url.find("://");
    const std::string authority = url.substr(colon + 3, url.find_first_of("/?#", colon + 3) - colon - 3);
    std::string party = url.substr(0, colon) + " " + authority.substr(authority.rfind('@') + 1);
    std::transform(party.begin(), party.end(), party.begin(), [](char c) { return std::tolower(c); });
    if (const std::size_t zone = party.find("%25"); zone < party.find(']')) {
        party.erase(zone, party.find(']') - zone);
    }
    const std::string ownPort = colon == 4 ? ":80" : ":443";
    const std::size_t at = party.rfind(ownPort);
    return at != std::string::npos && at + ownPort.size() == party.size() ? party.substr(0, at) : party;
}

void Redirect(FuzzInput input) {
    static const std::string kUrls[] = {"https://portal.example.com/a/b?c", "http://portal.example.com/a",
                                        "https://[fe80::1]:8443/"};
    const std::string& url = kUrls[input.Choice(std::size(kUrls))];
    const suite::CheckedRequest request = {
        url, *suite::ParseUrl(url), true, {{"Authorization", "at"}, {"Cookie", "c"}, {"Accept", "*"}}, "code"};
    const long status = 300 + static_cast<long>(input.Choice(9));
    const auto outcome = suite::FollowRedirect(request, status, input.text);
    if (const auto* const next = std::get_if<suite::CheckedRequest>(&outcome)) {
        const bool isHttps = next->url.rfind("https://", 0) == 0;
        Require(isHttps || (next->url.rfind("http://", 0) == 0 && &url == &kUrls[1]), "a redirect out of https");
        Require(next->url.find_first_of(std::string(" \r\n\0", 4)) == std::string::npos, "a URL that forges a line");
        const std::string party = Party(next->url);
        const bool upgraded = &url == &kUrls[1] && party == "https portal.example.com";
        Require(party == Party(url) || upgraded || (next->body.empty() && next->headers.size() == 1),
                "secrets go to another party");
    }
}

void Proxy(FuzzInput input) {
    std::vector<std::wstring> parts(2);
    for (const std::string& part : input.Parts()) {
        parts.insert(parts.end() - 2, {part.begin(), part.end()});
    }
    const suite::ProxyTarget target = {L"https", parts[2], L"8443"};
    const std::wstring proxy = suite::ProxyBySettings(parts[0], parts[1], target);
    const std::size_t scheme = proxy.find(L"://");
    const std::wstring host = scheme == std::wstring::npos ? proxy : proxy.substr(scheme + 3);
    Require(parts[0].find(host) != std::wstring::npos, "a proxy that no setting names");
    Require(suite::ProxyBySettings(parts[0], parts[1] + L";*", target).empty(), "a proxy although all is direct");
}

const FuzzTarget kTargets[] = {
    {"http-reply", Reply}, {"http-coded", Coded}, {"http-redirect", Redirect}, {"http-proxy", Proxy}};

}  // namespace
