#pragma once

#include <string>

namespace userauth {

// The line that each exchange leaves in the log: operation, URL and HTTP code, each on a line of its own.
std::wstring SummaryLine(const char* operation, const std::wstring& url, int httpCode);

}  // namespace userauth
