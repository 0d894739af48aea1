#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace host {

// How the steps show what they found, UTF-8.

// "78 characters".
std::string Characters(std::size_t count);
// "512 bytes", "12.5 KiB", "3.1 MiB".
std::string Bytes(std::uintmax_t count);
// A secret by its length only; "none" when it is empty.
std::string LengthOnly(const std::wstring& secret);
// "none" when it is empty.
std::string TextOrNone(const std::wstring& text);
std::string YesOrNo(bool value);
// "12.3 ms".
std::string Milliseconds(std::chrono::duration<double, std::milli> time);

// What failed, and where to read more: "failed: --verbose shows the log".
std::string SeeLog(const std::string& what = "failed");

// Text from elsewhere as part of one line: characters that would control a terminal, break the line or reorder it
// become replacement characters.
std::string Printable(const std::string& text);

}  // namespace host
