#include "checks/TraceId.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

#include "checks/WireConstants.h"

namespace sandbox {
namespace {

// A decimal number of 32 bits without leading zeros.
std::optional<std::uint32_t> Number(std::string_view digits) {
    std::uint32_t value = 0;
    const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), value).ec;
    return error == std::errc{} && std::to_string(value) == digits ? std::optional(value) : std::nullopt;
}

// Command and code, the command filled up with zeros on its left.
std::string StartOf(unsigned command) {
    const auto digits = std::to_string(command);
    const auto width = static_cast<std::size_t>(kTraceCommandDigits);
    return std::string(width - std::min(digits.size(), width), '0') + digits + "_" + std::string(kTraceIdCode) + "_";
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
    const auto start = StartOf(command);
    if (traceId.substr(0, start.size()) != start) {
        return "does not begin with " + start;
    }
    traceId.remove_prefix(start.size());
    const auto underscore = std::min(traceId.find('_'), traceId.size());
    const auto time = Number(traceId.substr(0, underscore));
    if (!time) {
        return "has no decimal time of 32 bits without leading zeros";
    }
    if (!IsNear(*time, nowSeconds)) {
        return "has a time more than a day away";
    }
    if (underscore == traceId.size() || !IsRandomPart(traceId.substr(underscore + 1))) {
        return "does not end in an underscore and eight random digits 0 to 8, the first 0 to 7";
    }
    return {};
}

}  // namespace sandbox
