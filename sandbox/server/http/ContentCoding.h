#pragma once

#include <optional>
#include <string>

namespace sandbox {

// bytes in an HTTP content coding (RFC 9110, section 8.4.1): identity, gzip, deflate (a zlib stream, RFC 1950) or br.
// Nothing for another name. Throws std::runtime_error when a library fails.
std::optional<std::string> ContentCoded(const std::string& bytes, const std::string& coding);

}  // namespace sandbox
