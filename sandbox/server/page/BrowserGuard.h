#pragma once

#include <string>

#include "http/Exchange.h"

namespace sandbox {

// Who may send what. Everything here is on loopback, but a browser of this machine sends requests for sites from
// anywhere:
// - the page and everything under /sandbox answer only to 127.0.0.1, localhost and [::1] as Host, with any port. A
//   foreign site whose name was bound to 127.0.0.1 is refused so.
// - no path answers to an Origin other than the address it was asked under.
// - under /sandbox a request of a browser, which says so by Origin or Sec-Fetch-Site, needs the token that the page
//   carries: as X-Sandbox-Token, or as the query's "token" where a browser can send no field of ours.
// Programs (host, account SDK, tests) send neither of the two fields and need no token. Services of the platform answer
// to every Host: clients send them the names that they were given.
class BrowserGuard {
public:
    // Draws the token.
    BrowserGuard();

    // Why the request is refused; empty: it is not.
    std::string Refusal(const PlatformRequest& request) const;
    const std::string& Token() const { return m_token; }

private:
    bool HasToken(const PlatformRequest& request) const;

    const std::string m_token;
};

// Whether a path belongs to the page or to control, not to a service of the platform.
bool IsOfSandbox(const std::string& path);

}  // namespace sandbox
