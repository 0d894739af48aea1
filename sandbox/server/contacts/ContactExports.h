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

    // The account's login, made when it is asked for first.
    PortalLogin LoginOf(const std::string& userId);
    // The user id of the account that the login is of. Throws Refusal when it is nobody's.
    std::string OwnerOf(const PortalLogin& login) const;

    // What the account gets from now on.
    void Put(const std::string& userId, PlatformReply reply);
    // Three cards without anything special for an account that nothing was put for.
    PlatformReply ExportOf(const std::string& userId) const;

private:
    const PlatformReply m_default;
    mutable std::mutex m_lock;                       // guards everything below
    std::map<std::string, PortalLogin> m_logins;     // by user id
    std::map<std::string, PlatformReply> m_exports;  // by user id
};

// A good reply with these bytes, which are in that content coding. Copies of it share them.
PlatformReply ContactsReply(std::string bytes, const std::string& coding);

}  // namespace sandbox
