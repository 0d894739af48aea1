#include <UserAuthService.h>

#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

std::string ModuleNames(UserAuthService& service) {
    std::wstring names;
    for (const std::wstring& module : service.GetValidModule()) {
        names += (names.empty() ? L"" : L", ") + module;
    }
    return TextOrNone(names);
}

StepResult FetchConfiguration(SessionState& state) {
    UserAuthService& service = *state.service;
    if (!service.InitSysConf()) {
        return {false, SeeLog(), {}};
    }
    return {true,
            "",
            {
                {"available in country", YesOrNo(service.IsAvailableCountry())},
                {"modules", ModuleNames(service)},
                {"account activated", YesOrNo(service.IsActiveAccount())},
            }};
}

StepResult Activate(SessionState& state) {
    UserAuthService& service = *state.service;
    const bool before = service.IsActiveAccount();
    if (!service.ActiveUser()) {
        return {false, SeeLog(), {}};
    }
    const bool now = service.IsActiveAccount();
    const bool mustChange = state.sandbox != nullptr;  // its account starts without, and asking activates it
    return {!mustChange || (!before && now),
            std::string("activated before: ") + YesOrNo(before) + ", now: " + YesOrNo(now),
            {}};
}

}  // namespace

std::vector<Step> ConfigurationSteps(SessionState& state) {
    return {{"system-configuration", "system configuration", [&state] { return FetchConfiguration(state); }}};
}

std::vector<Step> ActivationSteps(SessionState& state) {
    return {{"activation", "account activation", [&state] { return Activate(state); }}};
}

}  // namespace host
