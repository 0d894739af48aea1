#include "profile/PortraitDownload.h"

#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>
#include <utility>

#include "UserAuthService.h"
#include "core/Modules.h"
#include "core/WindowMessages.h"
#include "request/UserAuthRequest.h"

namespace userauth {
namespace {

// The file outlives request and handler: it is closed last, after the message was posted. A receiver must tolerate a
// file that is still being flushed.
void Run(const PortraitDownload& download) {
    std::ofstream file(std::filesystem::path(download.file), std::ios::binary | std::ios::trunc);
    std::size_t received = 0;
    FileTransferHandler handler;
    handler.SetWriteDataFunc([&file, &received](const char* data, std::size_t& size, bool) {
        file.write(data, static_cast<std::streamsize>(size));
        received += size;
        return true;
    });
    UserAuthRequest request;
    request.SetGetRequest(download.url);
    const bool complete = request.SendDownRequest(&handler) == kHttpOk;
    download.service->SetCurrentUserHeadImageLocalPath(complete ? download.file : std::wstring());
    PostPortraitChanged();
}

// Out of memory, or a suite library that throws: as a download that failed.
void GiveUp(UserAuthService& service) noexcept {
    try {
        service.SetCurrentUserHeadImageLocalPath(std::wstring());
        PostPortraitChanged();
    } catch (...) {
        return;
    }
}

}  // namespace

void StartPortraitDownload(PortraitDownload download) {
    auto body = [download = std::move(download), module = ModuleReference()]() mutable {
        try {
            Run(download);
        } catch (...) {
            GiveUp(*download.service);
        }
        module.ReleaseWhenThisThreadHasEnded();
    };
    try {
        std::thread(std::move(body)).detach();
    } catch (const std::system_error&) {
        throw PortraitThreadNotStarted{std::current_exception()};
    }
}

}  // namespace userauth
