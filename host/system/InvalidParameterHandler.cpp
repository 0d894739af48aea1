#include "system/InvalidParameterHandler.h"

#include <cstdint>
#include <cstdlib>

namespace {

void GoOn(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {}

}  // namespace

namespace host {

void TolerateInvalidParameters() {
    _set_invalid_parameter_handler(&GoOn);
}

}  // namespace host

#if !defined(_MSC_VER)
// With MinGW every module has its own copy of the runtime's handler variable. The service looks this export up in the
// executable to find the handler that the host installed. With MSVC's shared runtime there is one variable for all.
extern "C" __declspec(dllexport) _invalid_parameter_handler UserAuthInvalidParameterHandler() {
    return _get_invalid_parameter_handler();
}
#endif
