#pragma once

#include <string>

class UserAuthService;

namespace userauth {

struct PortraitDownload {
    std::wstring file;  // overwritten; two downloads may write it at once, which is the caller's business
    std::wstring url;
    UserAuthService* service;
};

// Starts a detached thread that downloads into the file, stores the path in the account state (empty text unless the
// status was 200) and posts the portrait-changed message in either case. Throws std::system_error when no thread can be
// started. The thread keeps this library loaded until it has ended, also when the host unloads it meanwhile.
void StartPortraitDownload(PortraitDownload download);

}  // namespace userauth
