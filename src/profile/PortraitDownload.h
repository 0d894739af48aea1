#pragma once

#include <exception>
#include <string>

class UserAuthService;

namespace userauth {

struct PortraitDownload {
    std::wstring file;  // overwritten; two downloads may write it at once, which is the caller's business
    std::wstring url;
    UserAuthService* service;
};

// The thread facility's own exception, marked so that it can be told from everything that a suite library may throw.
struct PortraitThreadNotStarted {
    std::exception_ptr cause;
};

// Starts a detached thread that downloads into the file, stores the path in the account state (empty text unless the
// status was 200) and posts the portrait-changed message in either case. Throws PortraitThreadNotStarted.
// The thread keeps this library loaded until it has ended, also when the host unloads it meanwhile.
void StartPortraitDownload(PortraitDownload download);

}  // namespace userauth
