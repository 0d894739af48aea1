#include "contacts/ContactExports.h"

#include <algorithm>
#include <utility>

#include "contacts/ContactCards.h"
#include "crypto/Base64.h"
#include "crypto/RandomText.h"

namespace sandbox {
namespace {

constexpr std::size_t kDefaultCards = 3;

}  // namespace

PlatformReply ContactsReply(std::string bytes, const std::string& coding) {
    PlatformReply reply{200, {}, {}, "text/x-vcard", SharedBody(std::move(bytes))};
    if (coding != "identity") {
        reply.headers.emplace_back("Content-Encoding", coding);
    }
    return reply;
}

ContactExports::ContactExports() : m_default(ContactsReply(ContactCards(kDefaultCards, {}), "identity")) {}

// User ids may have characters that no cookie may.
PortalLogin ContactExports::LoginOf(const std::string& userId) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto& login = m_logins[userId];
    if (login.ticket.empty()) {
        login = {Base64Encoded(userId), RandomToken()};
    }
    return login;
}

std::string ContactExports::OwnerOf(const PortalLogin& login) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = std::find_if(m_logins.begin(), m_logins.end(),
                                    [&](const auto& known) { return known.second.ticket == login.ticket; });
    if (found == m_logins.end()) {
        throw Refusal(Wrong::kLogin, "portalTicket is not known");
    }
    if (found->second.user != login.user) {
        throw Refusal(Wrong::kLogin, "portalUser is not the one that portalTicket belongs to");
    }
    return found->first;
}

void ContactExports::Put(const std::string& userId, PlatformReply reply) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_exports.insert_or_assign(userId, std::move(reply));
}

PlatformReply ContactExports::ExportOf(const std::string& userId) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_exports.find(userId);
    return found == m_exports.end() ? m_default : found->second;
}

void ContactExports::Clear() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_exports.clear();
    m_logins.clear();
}

}  // namespace sandbox
