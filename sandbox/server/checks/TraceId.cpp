#include "checks/TraceId.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <vector>

#include "checks/WireConstants.h"

namespace sandbox {
namespace {

std::vector<std::string_view> Fields(std::string_view text) {
    std::vector<std::string_view> fields;
    for (;;) {
        const auto end = std::min(text.find('_'), text.size());
        fields.push_back(text.substr(0, end));
        if (end == text.size()) {
            return fields;
        }
        text.remove_prefix(end + 1);
    }
}

// A decimal number of 32 bits without leading zeros.
std::optional<std::uint32_t> Number(std::string_view digits) {
    std::uint32_t value = 0;
    const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), value).ec;
    return error == std::errc{} && std::to_string(value) == digits ? std::optional(value) : std::nullopt;
}

// Filled up with zeros on its left.
std::string CommandText(unsigned command) {
    const auto digits = std::to_string(command);
    const auto width = static_cast<std::size_t>(kTraceCommandDigits);
    return std::string(width - std::min(digits.size(), width), '0') + digits;
}

bool IsRandomPart(std::string_view digits) {
    return digits.size() == static_cast<std::size_t>(kTraceRandomDigits) && digits.front() <= kTraceFirstRandomMax &&
           std::all_of(digits.begin(), digits.end(),
                       [](char digit) { return digit >= '0' && digit <= kTraceRandomMax; });
}

bool IsNear(std::uint32_t time, std::uint64_t nowSeconds) {
    const std::uint32_t ahead = time - static_cast<std::uint32_t>(nowSeconds);  // both wrap around at 32 bits
    return ahead <= kTraceClockToleranceSeconds || 0U - ahead <= kTraceClockToleranceSeconds;
}

}  // namespace

std::uint64_t UnixTime() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

std::string TraceIdFault(std::string_view traceId, unsigned command, std::uint64_t nowSeconds) {
    const auto fields = Fields(traceId);
    if (fields.size() != 4) {
        return "has not the four fields command_11_time_random";
    }
    if (fields[0] != CommandText(command)) {
        return "does not begin with the command " + CommandText(command);
    }
    if (fields[1] != kTraceIdCode) {
        return "has another code than " + std::string(kTraceIdCode);
    }
    const auto time = Number(fields[2]);
    if (!time) {
        return "has no decimal time of 32 bits without leading zeros";
    }
    if (!IsNear(*time, nowSeconds)) {
        return "has a time more than a day away";
    }
    if (!IsRandomPart(fields[3])) {
        return "does not end in eight random digits 0 to 8, the first 0 to 7";
    }
    return {};
}

}  // namespace sandbox
