#include "commandline/ArgumentChecks.h"

#include <ParamStore.h>

#include <algorithm>
#include <fstream>
#include <iostream>

#include "system/HostError.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

bool IsBlankOrControl(char c) {
    return (c >= 0 && c <= ' ') || c == 0x7F;
}

// A URL for an error text, without its secrets: what stands before an "@" and behind a "?" or "#". Everything before
// the last "@" goes, since a refused text may have any form.
std::string Masked(const std::string& url) {
    const std::size_t scheme = url.find("://");
    const std::size_t start = scheme == std::string::npos ? 0 : scheme + 3;
    const std::size_t at = url.rfind('@');
    const bool hasUser = at != std::string::npos && at >= start;
    std::string shown = hasUser ? url.substr(0, start) + "***" + url.substr(at) : url;
    const std::size_t query = shown.find_first_of("?#");
    return Printable(query == std::string::npos ? shown : shown.substr(0, query + 1) + "***");
}

void JudgeUrl(const std::string& fault, const std::string& url, const std::string& what) {
    if (!fault.empty()) {
        Refuse(what + ": " + fault + ": " + Masked(url));
    }
}

}  // namespace

void Refuse(const std::string& text) {
    throw HostError(kExitUsage, text);
}

void CheckBaseUrl(const std::string& url, const std::string& what) {
    if (!url.empty()) {
        JudgeUrl(GlobalParamWrapper::BaseUrlFault(url), url, what);
    }
}

void CheckUrl(const std::string& url, const std::string& what) {
    const std::size_t scheme = url.find("://");
    const std::size_t end = scheme == std::string::npos ? scheme : url.find_first_of("/?#", scheme + 3);
    JudgeUrl(GlobalParamWrapper::BaseUrlFault(url.substr(0, end)), url, what);
    if (std::any_of(url.begin(), url.end(), IsBlankOrControl)) {
        JudgeUrl("must not contain blanks or control characters", url, what);
    }
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

std::vector<std::string> ReadLines(const std::string& file, const std::string& what) {
    if (file.empty()) {
        return {};
    }
    constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
    const bool standardInput = file == "-";
    std::ifstream stream(standardInput ? std::filesystem::path() : CheckedFile(file, what), std::ios::binary);
    std::istream& input = standardInput ? std::cin : stream;
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        if (lines.empty() && line.rfind(kByteOrderMark, 0) == 0) {
            line.erase(0, sizeof(kByteOrderMark) - 1);
        }
        if (line = Trimmed(line); !line.empty()) {
            lines.push_back(line);
        }
    }
    if (lines.empty()) {
        Refuse(what + ": nothing can be read from " + file);
    }
    return lines;
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
