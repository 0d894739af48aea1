#include "contacts/ContactsPortal.h"

#include <optional>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"

namespace sandbox {
namespace {

// Cache-Control has the text of Accept, and ContentType no hyphen, on purpose: so the portal's clients send them.
std::string RequestFault(const PlatformRequest& request) {
    constexpr std::string_view kAccept = "application/json, text/plain, */*";
    HeaderInspection inspection(request.head);
    inspection.Expect("Accept", kAccept);
    inspection.Expect("Accept-Encoding", "gzip, deflate, br");
    inspection.Expect("Accept-Language", kAcceptLanguage);
    inspection.Expect("Cache-Control", kAccept);
    inspection.Expect("ContentType", "application/force-download");
    inspection.Expect("Content-Disposition", "attachment; filename='contacts.vcf'");
    inspection.Allow("Cookie");
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    if (!inspection.Reason().empty()) {
        return inspection.Reason();
    }
    return request.query.empty() ? "" : "the query is not empty";
}

// Takes "name=value;" off the front of text; nothing when it does not begin so.
std::optional<std::string> TakeCookie(std::string_view& text, std::string_view name) {
    const auto end = text.find(';');
    if (end == std::string_view::npos || end <= name.size() || text.substr(0, name.size()) != name ||
        text[name.size()] != '=') {
        return std::nullopt;
    }
    const auto value = text.substr(name.size() + 1, end - name.size() - 1);
    text.remove_prefix(end + 1);
    return std::string(value);
}

LoginCheck CheckCookies(const RequestHead& head, const ContactExports& exports) {
    const auto values = head.Values("Cookie");
    if (values.size() != 1) {
        return {{}, values.empty() ? "Cookie is missing" : "Cookie is there more than once"};
    }
    std::string_view rest = values.front();
    const auto ticket = TakeCookie(rest, "portalTicket");
    const auto user = TakeCookie(rest, "portalUser");
    if (!ticket || !user || !rest.empty()) {
        return {{}, "Cookie is not portalTicket=VALUE;portalUser=VALUE; and nothing else"};
    }
    return exports.CheckLogin({*user, *ticket});
}

PlatformReply Export(const PlatformRequest& request, const ContactExports& exports) {
    if (const auto fault = RequestFault(request); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    const auto check = CheckCookies(request.head, exports);
    return check.refusal.empty() ? exports.ExportOf(check.userId) : ErrorReply(403, check.refusal);
}

}  // namespace

void AddContactsEndpoint(EndpointTable& endpoints, const ContactExports& exports) {
    endpoints.Add("GET", kPathContactsExport,
                  [&exports](const PlatformRequest& request) { return Export(request, exports); });
}

}  // namespace sandbox
