#include "request/SummaryLine.h"

#include "core/TextEncoding.h"

namespace userauth {

std::wstring SummaryLine(const char* operation, const std::wstring& url, int httpCode) {
    const std::string line = std::string(operation) + "\nUrl:" + WideToMultiByte(url, kUtf8CodePage) +
                             "\nHttpCode:" + std::to_string(httpCode);
    return MultiByteToWide(line, kUtf8CodePage);
}

}  // namespace userauth
