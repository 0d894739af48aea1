#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace host {

// Checks of the command line's texts, UTF-8. A wrong text ends the program: HostError with kExitUsage and a line that
// names the option or command, given as "what".

[[noreturn]] void Refuse(const std::string& text);

// A base URL, as the parameter store takes one; or empty.
void CheckBaseUrl(const std::string& url, const std::string& what);
// A base URL with anything behind it.
void CheckUrl(const std::string& url, const std::string& what);
// A file that exists. Empty stays empty.
std::filesystem::path CheckedFile(const std::string& file, const std::string& what);
// A file that can be made or replaced, as far as its folder tells.
void CheckNewFile(const std::string& file, const std::string& what);
// The lines of a file, or of standard input for "-", at least one; empty lines and a byte order mark are left out. No
// lines when no file is given.
std::vector<std::string> ReadLines(const std::string& file, const std::string& what);
// NAME=VALUE without characters that end a cookie. The error's line does not show it: it may be a secret.
std::pair<std::wstring, std::wstring> CheckedCookie(const std::string& cookie, const std::string& what);

}  // namespace host
