#pragma once

#include "http/EndpointTable.h"
#include "http/Faults.h"
#include "http/TrafficLog.h"
#include "page/BrowserGuard.h"
#include "state/PlatformState.h"
#include "state/SignInRequests.h"
#include "sysconf/AccountSettings.h"

namespace sandbox {

// What the page shows. All of it must outlive the table.
struct PageSources {
    const PlatformState& state;
    const SettingsTable& settings;
    const FaultTable& faults;
    const TrafficLog& traffic;
    const SignInRequests& signIns;
};

// What a person sees: the page at "/", the sign-in page at "/sign-in", their files under /page.
void AddPageFileEndpoints(EndpointTable& endpoints, const BrowserGuard& guard);
// Under /sandbox: /events, server-sent events of the state ("state") and of new exchanges ("exchanges"); /exchange, one
// exchange in full, with secrets masked.
void AddPageEndpoints(EndpointTable& endpoints, const PageSources& sources);
// Under /sandbox: /sign-in-events, server-sent events of a sign-in that waits for a person; /sign-in-answer, the
// person's answer. The arguments must outlive the table.
void AddSignInPageEndpoints(EndpointTable& endpoints, PlatformState& state, SignInRequests& signIns);

}  // namespace sandbox
