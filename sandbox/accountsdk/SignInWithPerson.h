#pragma once

#include <functional>

#include "PlatformClient.h"

namespace accountsdk {

// Opens a sign-in at the platform, with opensPage its page in the system's browser, and waits for the person. Ends with
// kSignInCancelled soon after goOn has returned false. The platform limits the time, and notices a closed page.
SignInReply SignInWithPerson(PlatformClient& client, const SignInArguments& arguments, bool opensPage,
                             const std::function<bool()>& goOn);

}  // namespace accountsdk
