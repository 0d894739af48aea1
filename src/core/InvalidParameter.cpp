#include "core/InvalidParameter.h"

#include <windows.h>

#include <cstdlib>

#include "core/EntryPoint.h"

namespace userauth {

#if defined(_MSC_VER)

void RaiseInvalidParameter() {
    _invalid_parameter_noinfo();
}

#else

namespace {

constexpr UINT kStatusInvalidCRuntimeParameter = 0xC0000417;

_invalid_parameter_handler InstalledHandler() {
    if (const _invalid_parameter_handler ofThisModule = _get_invalid_parameter_handler()) {
        return ofThisModule;
    }
    using HandlerOfHost = _invalid_parameter_handler (*)();
    const auto ofTheHost = EntryPointOf<HandlerOfHost>(GetModuleHandleW(nullptr), "UserAuthInvalidParameterHandler");
    return ofTheHost == nullptr ? nullptr : ofTheHost();
}

}  // namespace

void RaiseInvalidParameter() {
    if (const _invalid_parameter_handler handler = InstalledHandler()) {
        handler(nullptr, nullptr, nullptr, 0, 0);
        return;
    }
    TerminateProcess(GetCurrentProcess(), kStatusInvalidCRuntimeParameter);
}

#endif

}  // namespace userauth
