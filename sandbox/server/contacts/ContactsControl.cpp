#include "contacts/ContactsControl.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "checks/WireConstants.h"
#include "contacts/ContactCards.h"
#include "http/ContentCoding.h"
#include "http/ControlEndpoint.h"

namespace sandbox {
namespace {

constexpr unsigned kMostCards = 200'000;
constexpr unsigned kMostBytes = 1024U * 1024 * 1024;

enum class Kind { kNumber, kText, kSwitch };

struct Member {
    const char* name;
    Kind kind;
    unsigned largest;  // of a number
};
constexpr Member kMembers[] = {
    {"cards", Kind::kNumber, kMostCards}, {"bytes", Kind::kNumber, kMostBytes},
    {"coding", Kind::kText, 0},           {"note", Kind::kText, 0},
    {"chunked", Kind::kSwitch, 0},
};

bool Fits(const Json::Value& value, const Member& member) {
    switch (member.kind) {
        case Kind::kNumber:
            return value.isUInt() && value.asUInt() <= member.largest;
        case Kind::kText:
            return value.isString();
        default:
            return value.isBool();
    }
}

std::string FaultOf(const Json::Value& order) {
    for (const auto& name : order.getMemberNames()) {
        const auto* member = std::find_if(std::begin(kMembers), std::end(kMembers),
                                          [&](const Member& known) { return name == known.name; });
        if (member == std::end(kMembers)) {
            return name + " is not a member of the order";
        }
        if (!Fits(order[name], *member)) {
            return name + " has the wrong type or is out of range";
        }
    }
    if (order.isMember("cards") == order.isMember("bytes")) {
        return "give either cards or bytes";
    }
    const bool plain = order.get("coding", "identity") == "identity" && !order.isMember("note");
    return order.isMember("cards") || plain ? "" : "bytes takes no note, and no coding but identity";
}

// Nothing when the coding is not known.
std::optional<PlatformReply> ReplyFor(const Json::Value& order) {
    if (order.isMember("bytes")) {
        auto reply = ContactsReply({}, "identity");
        reply.stream = RepeatedCard(order["bytes"].asUInt());
        return reply;
    }
    const auto coding = order.get("coding", "identity").asString();
    auto coded = ContentCoded(ContactCards(order["cards"].asUInt(), order["note"].asString()), coding);
    return coded ? std::optional(ContactsReply(*std::move(coded), coding)) : std::nullopt;
}

PlatformReply PutContacts(const Json::Value& order, const PlatformState& state, ContactExports& exports) {
    if (const auto fault = FaultOf(order); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    auto reply = ReplyFor(order);
    if (!reply) {
        return ErrorReply(400, "coding is none of identity, gzip, deflate and br");
    }
    reply->chunked = order["chunked"].asBool();
    exports.Put(state.CurrentAccount().userId, *std::move(reply));
    return JsonReply(Json::Value(Json::objectValue));
}

PlatformReply LoginReply(const PortalLogin& login) {
    Json::Value reply(Json::objectValue);
    reply["path"] = std::string(kPathContactsExport);
    reply["cookies"]["portalUser"] = login.user;
    reply["cookies"]["portalTicket"] = login.ticket;
    return JsonReply(reply);
}

}  // namespace

void AddContactsControl(EndpointTable& endpoints, const PlatformState& state, ContactExports& exports) {
    endpoints.Add("GET", "/sandbox/portal-login",
                  [&](const PlatformRequest&) { return LoginReply(exports.LoginOf(state.CurrentAccount().userId)); });
    endpoints.Add("POST", "/sandbox/contacts",
                  WithObject([&](const Json::Value& body) { return PutContacts(body, state, exports); }));
}

}  // namespace sandbox
