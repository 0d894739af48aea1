#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "http/RequestHead.h"

namespace sandbox {

// Checks the header fields of one request. Every field that is asked for must be there exactly once. Each function
// throws Refusal, with the field's name first, when the request is to be refused.
class HeaderInspection {
public:
    // head must outlive the inspection.
    explicit HeaderInspection(const RequestHead& head) : m_head(head) {}

    // The fourteen fields that every account request carries; the trace id must be one of traceCommand.
    void ExpectCommonFields(unsigned traceCommand);
    // The common fields, Authorization, Content-Type of JSON and Content-Length, and no others. Authorization may have
    // any value: the caller checks it.
    void ExpectAuthorizedFields(unsigned traceCommand, std::size_t bodySize);
    void Expect(std::string_view name, std::string_view value);
    // With any value, an empty one included; returns it.
    std::string ExpectPresent(std::string_view name);
    // The field belongs to this request, but is not looked at here.
    void Allow(std::string_view name) { m_asked.emplace_back(name); }
    // 32 hexadecimal digits.
    void ExpectDeviceId(std::string_view name);
    // Content-Length once and equal to the body's size.
    void ExpectContentLength(std::size_t bodySize);
    void ExpectNoBody() const;
    // Refuses every field that no check asked for so far, but for those that an HTTP library adds by itself: Host,
    // User-Agent, Accept, Accept-Encoding and Connection. A Host or User-Agent with the client's own value is refused
    // as well, because no library sets it.
    void RefuseOtherFields() const;

private:
    const RequestHead& m_head;
    std::vector<std::string> m_asked;
};

}  // namespace sandbox
