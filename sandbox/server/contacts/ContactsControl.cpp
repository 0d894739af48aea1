#include <utility>

#include "checks/WireConstants.h"
#include "contacts/ContactCards.h"
#include "contacts/Endpoints.h"
#include "http/ContentCoding.h"
#include "http/JsonText.h"
#include "http/OrderReader.h"

namespace sandbox {
namespace {

constexpr unsigned kMostCards = 200'000;
constexpr unsigned kMostBytes = 1024U * 1024 * 1024;

PlatformReply Cards(unsigned count, const std::string& note, const std::string& coding) {
    auto coded = ContentCoded(ContactCards(count, note), coding);
    if (!coded) {
        throw Refusal(Wrong::kBody, "coding is none of identity, gzip, deflate and br");
    }
    return ContactsReply(*std::move(coded), coding);
}

// Cards of that size in all, never held in memory as a whole.
PlatformReply Bytes(unsigned size) {
    auto reply = ContactsReply({}, "identity");
    reply.stream = RepeatedCard(size);
    return reply;
}

PlatformReply PutContacts(const Json::Value& body, const PlatformState& state, ContactExports& exports) {
    OrderReader order(body);
    const auto cards = order.Number("cards", 0, kMostCards);
    const auto bytes = order.Number("bytes", 0, kMostBytes);
    const auto coding = order.Text("coding").value_or("identity");
    const auto note = order.Text("note");
    const bool chunked = order.Switch("chunked").value_or(false);
    order.RefuseOthers();
    if (cards.has_value() == bytes.has_value()) {
        throw Refusal(Wrong::kBody, "give either cards or bytes");
    }
    if (bytes && (note || coding != "identity")) {
        throw Refusal(Wrong::kBody, "bytes takes no note, and no coding but identity");
    }
    auto reply = cards ? Cards(*cards, note.value_or(""), coding) : Bytes(*bytes);
    reply.chunked = chunked;
    exports.Put(state.CurrentAccount().userId, std::move(reply));
    return JsonReply(Json::Value(Json::objectValue));
}

PlatformReply LoginReply(const PortalLogin& login) {
    return JsonReply(
        JsonObject({{"path", std::string(kPathContactsExport)},
                    {"cookies", JsonObject({{"portalUser", login.user}, {"portalTicket", login.ticket}})}}));
}

}  // namespace

void AddContactsControl(EndpointTable& endpoints, const PlatformState& state, ContactExports& exports) {
    endpoints.Add("GET", "/sandbox/portal-login",
                  [&](const PlatformRequest&) { return LoginReply(exports.LoginOf(state.CurrentAccount().userId)); });
    endpoints.Add("POST", "/sandbox/contacts",
                  WithObject([&](const Json::Value& body) { return PutContacts(body, state, exports); }));
}

}  // namespace sandbox
