#include "commandline/ArgumentChecks.h"

#include <algorithm>

#include "system/HostError.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr int kHighestPort = 65535;

bool IsBlankOrControl(char c) {
    return (c >= 0 && c <= ' ') || c == 0x7F;
}

// What follows the "://" of an http or https URL; empty when it is another text.
std::string BehindScheme(const std::string& url) {
    const std::size_t scheme = url.find("://");
    const std::string name = url.substr(0, scheme);
    return scheme != std::string::npos && (name == "http" || name == "https") ? url.substr(scheme + 3) : "";
}

// An URL for an error text, without the secrets that it may hold: what stands before an "@" and behind a "?" or "#".
// Whatever comes before the last "@" goes, since a refused text may have any form.
std::string Masked(const std::string& url) {
    const std::size_t scheme = url.find("://");
    const std::size_t start = scheme == std::string::npos ? 0 : scheme + 3;
    const std::size_t at = url.rfind('@');
    const bool hasUser = at != std::string::npos && at >= start;
    std::string shown = hasUser ? url.substr(0, start) + "***" + url.substr(at) : url;
    const std::size_t query = shown.find_first_of("?#");
    return Printable(query == std::string::npos ? shown : shown.substr(0, query + 1) + "***");
}

// authority: HOST, HOST:PORT or [ADDRESS]:PORT.
void CheckPort(const std::string& authority, const std::string& what) {
    const std::size_t colon = authority.find(':', authority.find(']') == std::string::npos ? 0 : authority.find(']'));
    if (colon == std::string::npos) {
        return;
    }
    const std::string port = authority.substr(colon + 1);
    const bool digits = !port.empty() && port.size() <= 5 && port.find_first_not_of("0123456789") == std::string::npos;
    if (!digits || std::stoi(port) < 1 || std::stoi(port) > kHighestPort) {
        Refuse(what + ": port \"" + Printable(port) + "\" is no number from 1 to 65535");
    }
}

}  // namespace

void Refuse(const std::string& text) {
    throw HostError(kExitUsage, text);
}

std::string CheckedBaseUrl(std::string url, const std::string& what) {
    while (!url.empty() && url.back() == '/') {
        url.pop_back();
    }
    const std::string authority = BehindScheme(url);
    const bool valid = !authority.empty() && authority.find_first_of("/?#@\\ \t\r\n") == std::string::npos;
    if (!url.empty() && !valid) {
        Refuse(what + ": not a base URL like http://HOST:PORT: " + Masked(url));
    }
    CheckPort(authority, what);
    return url;
}

std::string CheckedUrl(const std::string& url, const std::string& what) {
    const std::string rest = BehindScheme(url);
    const bool hasHost = !rest.empty() && rest.find_first_of("/?#\\") != 0;
    if (!hasHost || std::any_of(url.begin(), url.end(), IsBlankOrControl)) {
        Refuse(what + ": not a URL like http://HOST/PATH: " + Masked(url));
    }
    const std::string authority = rest.substr(0, rest.find_first_of("/?#\\"));
    CheckPort(authority.substr(authority.rfind('@') + 1), what);  // from its start when there is no "@"
    return url;
}

std::filesystem::path CheckedFile(const std::string& file, const std::string& what) {
    std::filesystem::path path = ToWide(file);
    std::error_code error;
    if (!path.empty() && !std::filesystem::is_regular_file(path, error)) {
        Refuse(what + ": no such file: " + file);
    }
    return path;
}

void CheckNewFile(const std::string& file, const std::string& what) {
    const std::filesystem::path path = ToWide(file);
    std::error_code error;
    if (!path.has_filename() || std::filesystem::is_directory(path, error)) {
        Refuse(what + ": not the name of a file: " + file);
    }
    if (path.has_parent_path() && !std::filesystem::is_directory(path.parent_path(), error)) {
        Refuse(what + ": no such folder: " + ToUtf8(path.parent_path().wstring()));
    }
}

std::pair<std::wstring, std::wstring> CheckedCookie(const std::string& cookie, const std::string& what) {
    const std::size_t equals = cookie.find('=');
    const bool breaks =
        std::any_of(cookie.begin(), cookie.end(), [](char c) { return IsBlankOrControl(c) || c == ';'; });
    if (equals == 0 || equals == std::string::npos || breaks) {
        Refuse(what + ": not of the form NAME=VALUE, without blanks and semicolons");
    }
    return {ToWide(cookie.substr(0, equals)), ToWide(cookie.substr(equals + 1))};
}

}  // namespace host
