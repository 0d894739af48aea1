#pragma once

#include <memory>
#include <string>

#include "commandline/CommandLine.h"
#include "platform/SandboxProcess.h"
#include "system/Folders.h"
#include "system/PortraitWindow.h"
#include "text/Console.h"

class UserAuthService;

namespace host {

// What the steps of one session share.
struct SessionState {
    SessionState(const Options& given, Console& shownOn) : options(given), console(shownOn) {}

    const Options& options;
    Console& console;
    const CommandCall* call = nullptr;  // the command whose steps run; null before the first
    TemporaryFolder folder;
    std::unique_ptr<SandboxProcess> sandbox;  // null without demo; declared after the folder, which must outlive it
    std::string platformUrl;                  // empty until the set-up has run
    UserAuthService* service = nullptr;       // null until it was created
    std::string authorizationCode;            // from its delivery to its exchange
    std::unique_ptr<PortraitWindow> window;   // null until a profile is requested
    std::wstring gatewayUserId;               // what the two look-ups found last
    std::wstring syncServerUserId;
    std::string reportedBusiness;  // what was reported last; UTF-8
    bool sdkInitialised = false;
    bool madeLegacyItem = false;  // this session made the earlier client's sign-in in the store
};

}  // namespace host
