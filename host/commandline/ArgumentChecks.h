#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace host {

// What the texts of the command line must look like. A text that does not ends the program: HostError with kExitUsage
// and a line that names the option or command, given as "what". Texts are UTF-8.

[[noreturn]] void Refuse(const std::string& text);

// A base URL, as the parameter store takes one; or empty.
void CheckBaseUrl(const std::string& url, const std::string& what);
// A base URL with anything behind it.
void CheckUrl(const std::string& url, const std::string& what);
// A file that exists. Empty stays empty.
std::filesystem::path CheckedFile(const std::string& file, const std::string& what);
// A file that can be made or replaced, as far as its folder tells.
void CheckNewFile(const std::string& file, const std::string& what);
// The lines of a file, those of standard input for "-"; without the empty ones. None for empty.
std::vector<std::string> ReadLines(const std::string& file, const std::string& what);
// NAME=VALUE, as far as a Cookie header can carry it. The line does not show it: it may be a secret.
std::pair<std::wstring, std::wstring> CheckedCookie(const std::string& cookie, const std::string& what);

}  // namespace host
