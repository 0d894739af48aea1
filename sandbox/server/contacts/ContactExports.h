#pragma once

#include <map>
#include <mutex>
#include <string>

#include "http/Exchange.h"

namespace sandbox {

// The values of the login cookies portalUser and portalTicket.
struct PortalLogin {
    std::string user;
    std::string ticket;
};

// Logins of the contacts portal and what it serves to whom. All operations may be called from any thread.
class ContactExports {
public:
    ContactExports();

    // The account's login, which the first call makes.
    PortalLogin LoginOf(const std::string& userId);
    // The user id of the account whose login it is. Throws Refusal when it is nobody's.
    std::string OwnerOf(const PortalLogin& login) const;

    // What the account gets from now on.
    void Put(const std::string& userId, PlatformReply reply);
    // What was put for the account; three plain cards when nothing was.
    PlatformReply ExportOf(const std::string& userId) const;
    // Forgets what was put, and ends all logins.
    void Clear();

private:
    const PlatformReply m_default;
    mutable std::mutex m_lock;                       // guards everything below
    std::map<std::string, PortalLogin> m_logins;     // by user id
    std::map<std::string, PlatformReply> m_exports;  // by user id
};

// A reply with status 200 and bytes as its body. coding is the content coding that bytes are in. Copies of the reply
// share them.
PlatformReply ContactsReply(std::string bytes, const std::string& coding);

}  // namespace sandbox
