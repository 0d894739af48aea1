#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/RequestHead.h"

namespace sandbox {

// Checks the header fields of one request and keeps the first reason to refuse it. Every field that is asked for must
// be there exactly once.
class HeaderInspection {
public:
    // head must outlive the inspection.
    explicit HeaderInspection(const RequestHead& head) : m_head(head) {}

    // The fourteen fields that every account request carries; the trace id must be one of traceCommand.
    void ExpectCommonFields(unsigned traceCommand);
    // The whole set of a signed-in request with a JSON body and nothing else of the client's; the value of
    // Authorization is the caller's to judge.
    void ExpectAuthorizedFields(unsigned traceCommand, std::size_t bodySize);
    void Expect(std::string_view name, std::string_view value);
    // With any value, an empty one included.
    void ExpectPresent(std::string_view name);
    // The field belongs to this request; somebody else looks at it.
    void Allow(std::string_view name) { m_asked.emplace_back(name); }
    // 32 hexadecimal digits.
    void ExpectDeviceId(std::string_view name);
    // Refuses every field that no check asked for so far, but for those that an HTTP library adds by itself: Host,
    // User-Agent, Accept, Accept-Encoding and Connection. Host and User-Agent with the client's own values are refused.
    void RefuseOtherFields();
    // Content-Length once and equal to the body's size.
    void ExpectContentLength(std::size_t bodySize);
    void ExpectNoBody();

    // Why the request is refused, beginning with the field's name; empty when nothing is wrong.
    const std::string& Reason() const { return m_reason; }

private:
    std::optional<std::string> TakeSingle(std::string_view name);
    void ExpectTraceId(unsigned command);
    void ExpectDeviceIds();
    void ExpectDeviceName();
    void ExpectCountryCode();
    void ExpectClientMode();
    void Refuse(std::string_view name, std::string_view reason);

    const RequestHead& m_head;
    std::vector<std::string> m_asked;
    std::string m_reason;
};

}  // namespace sandbox
