#pragma once

#include <string>

namespace host {

// What an earlier version of the client left of a sign-in: the standard base64 text of a data-protection blob of this
// user of this machine, in which the refresh token is followed by the local time, "YYYY-MM-DD hh:mm:ss". Throws
// HostError with kExitStepFailed and the system's error code.
std::wstring MakeLegacySignIn(const std::wstring& refreshToken);

}  // namespace host
