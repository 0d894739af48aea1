#include <optional>

#include "checks/AuthorizedRequest.h"
#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "contacts/Endpoints.h"

namespace sandbox {
namespace {

// Returns the cookies.
std::string CheckHeader(const RequestHead& head) {
    constexpr std::string_view kAccept = "application/json, text/plain, */*";
    HeaderInspection inspection(head);
    inspection.Expect("Accept", kAccept);
    inspection.Expect("Accept-Encoding", "gzip, deflate, br");
    inspection.Expect("Accept-Language", kAcceptLanguage);
    // The portal's clients send the text of Accept in Cache-Control as well, and write ContentType without a hyphen.
    inspection.Expect("Cache-Control", kAccept);
    inspection.Expect("ContentType", "application/force-download");
    inspection.Expect("Content-Disposition", "attachment; filename='contacts.vcf'");
    inspection.Allow("Cookie");
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    return head.OnlyValue("Cookie");
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

PlatformReply Export(const PlatformRequest& request, const ContactExports& exports) {
    const auto cookies = CheckHeader(request.head);
    RequireQuery(request, "");
    std::string_view rest = cookies;
    const auto ticket = TakeCookie(rest, "portalTicket");
    const auto user = TakeCookie(rest, "portalUser");
    if (!ticket || !user || !rest.empty()) {
        throw Refusal(Wrong::kLogin,
                      "Cookie is not one field of portalTicket=VALUE;portalUser=VALUE; and nothing else");
    }
    return exports.ExportOf(exports.OwnerOf({*user, *ticket}));
}

}  // namespace

void AddContactsEndpoint(EndpointTable& endpoints, const ContactExports& exports) {
    endpoints.Add("GET", kPathContactsExport, [&](const PlatformRequest& request) { return Export(request, exports); });
}

}  // namespace sandbox
