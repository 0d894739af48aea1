#include <ParamStore.h>
#include <UserAuthService.h>

#include <algorithm>
#include <string_view>
#include <system_error>

#include "steps/Steps.h"
#include "system/PortraitWindow.h"
#include "system/WindowsHandle.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestPortrait{20};
constexpr std::chrono::seconds kLongestFlush{2};
constexpr DWORD kPollMilliseconds = 10;

// Runs an operation that looks the user id up. The operation succeeds with an empty id, this step does not.
StepResult LookUpUserId(SessionState& state, bool (UserAuthService::*lookUp)(), std::wstring& found) {
    const bool answered = (state.service->*lookUp)();
    found = answered ? state.service->GetCurrentUserID() : std::wstring();
    return {!found.empty(), answered ? TextOrNone(found) : SeeLog()};
}

StepResult AskGateway(SessionState& state) {
    return LookUpUserId(state, &UserAuthService::RequestUserID, state.gatewayUserId);
}

StepResult AskSyncServer(SessionState& state) {
    return LookUpUserId(state, &UserAuthService::RequestUserIdFromSyncServer, state.syncServerUserId);
}

bool IsAscii(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < 0x80; });
}

// Compares the id with the gateway's and with the one in the parameter store.
StepResult LookUpAtSyncServer(SessionState& state) {
    StepResult result = AskSyncServer(state);
    if (!result.ok) {
        return result;
    }
    if (GlobalParamWrapper::GetInstance()->GetUserID() != state.syncServerUserId) {
        return {false, result.detail + ", but another one in the parameter store"};
    }
    if (state.gatewayUserId == state.syncServerUserId) {
        result.detail += ", the same";
    } else if (IsAscii(state.syncServerUserId)) {
        return {false, result.detail + ", another user than the gateway's"};
    } else {
        // The service reads the gateway's id in the ANSI code page and this one as UTF-8.
        result.detail += ", not the gateway's: ids beyond ASCII are read in two code pages";
    }
    return result;
}

StepResult ShowRegistration(SessionState& state) {
    UserAuthService& service = *state.service;
    if (!service.UpdateRegistInfo()) {
        return {false, SeeLog()};
    }
    const std::wstring country = service.GetCurrentCountryCode();
    return {service.IsChinaAccount() == (country == L"CN"),
            "",
            {
                {"country", TextOrNone(country)},
                {"registered in China", YesOrNo(service.IsChinaAccount())},
                {"language type", TextOrNone(ToWide(service.GetLanguageType()))},
                {"privilege", YesOrNo(service.GetCurrentPriviledge())},
                {"client logs reported", YesOrNo(service.GetClientLogReportStatus())},
            }};
}

// Request and wait are one step, so that the step shows the portrait's download among its exchanges.
StepResult RequestProfile(SessionState& state) try {
    UserAuthService& service = *state.service;
    if (!state.window) {
        state.window = std::make_unique<PortraitWindow>();
    }
    state.window->Forget();
    if (!service.RequestUserInfo()) {
        return {false, SeeLog()};
    }
    const Clock::time_point answered = Clock::now();
    const bool arrived = state.window->WaitForMessage(kLongestPortrait);
    // The operation succeeds with every reply of status 200, also with one that names nobody.
    const bool named = !service.GetCurrentUserID().empty();
    const std::string message =
        arrived ? "portrait message after " + Milliseconds(Clock::now() - answered) : "no portrait message within 20 s";
    return {arrived && named,
            named ? message : "the reply names no user; " + message,
            {
                {"user id", TextOrNone(service.GetCurrentUserID())},
                {"display name", TextOrNone(service.GetCurrentUserName())},
                {"account brand", std::to_string(service.GetCurrentUserAccountBrandID())},
                {"portrait URL", TextOrNone(service.GetCurrentUserHeadImageUrl())},
            }};
} catch (const std::system_error& error) {
    return {false, std::string("the download's thread cannot be started: ") + error.what()};
}

std::string FaultText(DWORD error) {
    switch (error) {
        case ERROR_SHARING_VIOLATION:
            return "the file is still being written";
        case ERROR_PATH_NOT_FOUND:
        case ERROR_FILE_NOT_FOUND:
            return "there is no file: make its folder before the profile is requested";
        default:
            return "the file cannot be read: system error " + std::to_string(error);
    }
}

std::string ImageType(std::string_view firstBytes) {
    const struct {
        std::string_view start;
        const char* type;
    } types[] = {{"\x89PNG\r\n\x1A\n", "PNG"}, {"\xFF\xD8\xFF", "JPEG"}, {"GIF87a", "GIF"}, {"GIF89a", "GIF"}};
    for (const auto& [start, type] : types) {
        if (firstBytes.substr(0, start.size()) == start) {
            return type;
        }
    }
    return "other";
}

struct PortraitFile {
    std::string fault;  // why it cannot be read; empty when it was
    std::uintmax_t bytes = 0;
    std::string imageType = {};  // "PNG", "JPEG", "GIF" or "other", by its first bytes
};

// Looks at a downloaded portrait. The service announces the file before it closes it, so this waits while somebody has
// the file open for writing, at most the given time.
PortraitFile ReadPortraitFile(const std::filesystem::path& file, std::chrono::milliseconds longest) {
    // Writing is not shared, so opening fails while the writer still has the file open.
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_DELETE;
    const Clock::time_point end = Clock::now() + longest;
    WindowsHandle handle = OpenFile(file, GENERIC_READ, kShare);
    while (!handle && GetLastError() == ERROR_SHARING_VIOLATION && Clock::now() < end) {
        Sleep(kPollMilliseconds);
        handle = OpenFile(file, GENERIC_READ, kShare);
    }
    LARGE_INTEGER size = {};
    char start[8] = {};
    DWORD read = 0;
    if (!handle || !GetFileSizeEx(handle.get(), &size) ||
        !ReadFile(handle.get(), start, sizeof(start), &read, nullptr)) {
        return {FaultText(GetLastError())};
    }
    return {"", static_cast<std::uintmax_t>(size.QuadPart), ImageType({start, read})};
}

StepResult ShowPortrait(SessionState& state) {
    const std::wstring path = state.service->GetCurrentUserHeadImageLocalPath();
    if (state.service->GetCurrentUserHeadImageUrl().empty()) {
        return {path.empty(), "no portrait"};
    }
    if (path.empty()) {
        return {false, SeeLog("the download failed")};
    }
    const PortraitFile portrait = ReadPortraitFile(path, kLongestFlush);
    if (!portrait.fault.empty()) {
        return {false, portrait.fault, {{"path", ToUtf8(path)}}};
    }
    return {portrait.bytes != 0,
            portrait.imageType + ", " + std::to_string(portrait.bytes) + " bytes",
            {{"path", ToUtf8(path)}}};
}

}  // namespace

std::vector<Step> UserIdSteps() {
    return {{"user-id", "user id from sync server", AskSyncServer}};
}

std::vector<Step> WhoAmISteps() {
    return {
        {"gateway-user-id", "user id from gateway", AskGateway},
        {"sync-server-user-id", "user id from sync server", LookUpAtSyncServer},
    };
}

std::vector<Step> RegistrationSteps() {
    return {{"registration", "registration place", ShowRegistration}};
}

std::vector<Step> ProfileSteps() {
    return {
        {"profile", "profile and portrait message", RequestProfile},
        {"portrait", "portrait file", ShowPortrait},
    };
}

}  // namespace host
