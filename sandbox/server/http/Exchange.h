#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "http/RequestHead.h"

namespace sandbox {

// One request as an endpoint sees it.
struct PlatformRequest {
    std::string method;
    std::string path;                                    // without the query, as it stood on the wire
    std::string query;                                   // as it stood on the wire, without the question mark
    std::multimap<std::string, std::string> parameters;  // the query, decoded
    std::string origin;                                  // scheme, address and port of the listener that was asked
    RequestHead head;
    std::string body;
};

inline constexpr const char* kContentTypeJson = "application/json;charset=UTF-8";

// A body that goes out block by block, so that it need not be held as a whole.
struct StreamedBody {
    std::size_t size = 0;
    // Returns bytes from offset on: at least one while offset is below size, perhaps more than are left. They stay
    // valid as long as the function lives.
    std::function<std::string_view(std::size_t offset)> block;
};

// A body of bytes in memory. Copies of the body share them.
inline StreamedBody SharedBody(std::string bytes) {
    const auto shared = std::make_shared<const std::string>(std::move(bytes));
    return {shared->size(), [shared](std::size_t offset) { return std::string_view(*shared).substr(offset); }};
}

struct PlatformReply {
    int status = 200;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string contentType = kContentTypeJson;
    std::optional<StreamedBody> stream = std::nullopt;  // instead of body
    bool chunked = false;                               // sent in chunks, without Content-Length
    std::string refusal = {};                           // why the request was refused; empty: it was not
    // Instead of body: asked again and again for what is new, empty text when nothing is. The reply ends with the
    // connection. Faults do not touch it.
    std::function<std::string()> live = nullptr;
};

inline std::size_t BodySize(const PlatformReply& reply) {
    return reply.stream ? reply.stream->size : reply.body.size();
}

// Which part of a refused request is wrong.
enum class Wrong { kHeader, kQuery, kBody, kAccessToken, kLogin };

// Thrown by whoever finds that a request must be refused. what() is the reason, in one line.
class Refusal : public std::runtime_error {
public:
    Refusal(Wrong part, const std::string& reason) : std::runtime_error(reason), m_part(part) {}

    Wrong Part() const { return m_part; }
    int Status() const { return m_part == Wrong::kAccessToken ? 401 : m_part == Wrong::kLogin ? 403 : 400; }

private:
    Wrong m_part;
};

}  // namespace sandbox
