#include "UrlText.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <new>

namespace suite {

namespace {

struct UrlDeleter {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct CurlTextDeleter {
    void operator()(char* text) const { curl_free(text); }
};
using UrlHandle = std::unique_ptr<CURLU, UrlDeleter>;

// A part must never be missing for want of memory: without its scheme an https URL would pass for one that asks for no
// certificate.
bool Succeeded(CURLUcode result) {
    if (result == CURLUE_OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    return result == CURLUE_OK;
}

UrlHandle NewUrl() {
    UrlHandle url(curl_url());
    if (!url) {
        throw std::bad_alloc();
    }
    return url;
}

std::string PartOf(CURLU* url, CURLUPart part, unsigned int flags = 0) {
    char* text = nullptr;
    const CURLUcode result = curl_url_get(url, part, &text, flags);
    const std::unique_ptr<char, CurlTextDeleter> owner(text);
    return Succeeded(result) && text != nullptr ? std::string(text) : std::string();
}

std::string LowerCase(std::string text) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    std::transform(text.begin(), text.end(), text.begin(), lower);
    return text;
}

// libcurl's own parser also takes "http:/host" and "http:///host"; here the host follows two slashes.
bool HasWebScheme(const std::string& url) {
    const std::size_t colon = url.find("://");
    if (colon == std::string::npos || url.size() <= colon + 3 || url[colon + 3] == '/') {
        return false;
    }
    const std::string scheme = LowerCase(url.substr(0, colon));
    return scheme == "http" || scheme == "https";
}

}  // namespace

std::optional<std::string> EscapeUrl(const std::string& utf8) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string escaped;
    escaped.reserve(utf8.size());
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r' || c == '\n' || c == '\0') {
            return std::nullopt;
        }
        if (byte <= ' ' || byte >= 0x7F) {
            escaped += {'%', kDigits[byte >> 4], kDigits[byte & 0x0F]};
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::optional<UrlParts> ParseUrl(const std::string& url) {
    const UrlHandle handle = NewUrl();
    if (!HasWebScheme(url) || !Succeeded(curl_url_set(handle.get(), CURLUPART_URL, url.c_str(), 0))) {
        return std::nullopt;
    }
    UrlParts parts;
    parts.scheme = LowerCase(PartOf(handle.get(), CURLUPART_SCHEME));
    parts.host = LowerCase(PartOf(handle.get(), CURLUPART_HOST));
    parts.port = PartOf(handle.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
    if (parts.host.empty()) {
        return std::nullopt;
    }
    const std::string writtenPort = PartOf(handle.get(), CURLUPART_PORT);
    parts.authority = writtenPort.empty() ? parts.host : parts.host + ":" + writtenPort;
    parts.display = parts.scheme + "://" + parts.authority + PartOf(handle.get(), CURLUPART_PATH);
    return parts;
}

GivenUrl ReadUrl(const std::string& utf8) {
    GivenUrl url{EscapeUrl(utf8), {}};
    if (url.escaped) {
        url.parts = ParseUrl(*url.escaped);
    }
    return url;
}

std::optional<std::string> ResolveReference(const std::string& base, const std::string& reference) {
    const std::optional<std::string> escaped = EscapeUrl(reference);
    const UrlHandle handle = NewUrl();
    if (!escaped || !Succeeded(curl_url_set(handle.get(), CURLUPART_URL, base.c_str(), 0)) ||
        !Succeeded(curl_url_set(handle.get(), CURLUPART_URL, escaped->c_str(), CURLU_NON_SUPPORT_SCHEME))) {
        return std::nullopt;
    }
    return PartOf(handle.get(), CURLUPART_URL);
}

bool SameParty(const UrlParts& from, const UrlParts& to) {
    if (from.host != to.host) {
        return false;
    }
    const bool sameOrigin = from.scheme == to.scheme && from.port == to.port;
    const bool upgraded = from.scheme == "http" && from.port == "80" && to.scheme == "https" && to.port == "443";
    return sameOrigin || upgraded;
}

bool IsLoopback(const UrlParts& url) {
    return url.host == "localhost" || url.host == "[::1]" || AddressOf(url).rfind("127.", 0) == 0;
}

std::string AddressOf(const UrlParts& url) {
    if (!url.host.empty() && url.host.front() == '[') {
        return url.host.substr(1, url.host.size() - 2);
    }
    return url.host.find_first_not_of("0123456789.") == std::string::npos ? url.host : std::string();
}

}  // namespace suite
