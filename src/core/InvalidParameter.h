#pragma once

namespace userauth {

// Raises the C runtime's invalid-parameter condition: an installed handler is called and the call returns when it does;
// with none the process ends, with status 0xC0000417 (MSVC's runtime: fast fail, 0xC0000409).
//
// With MinGW every module has its own copy of the runtime's handler variable, so a handler that the host installed
// cannot be seen from this library by the runtime's own means. A host that wants one exports, from its executable,
//     extern "C" _invalid_parameter_handler UserAuthInvalidParameterHandler();
// which returns the handler to call, or null. With MSVC's shared runtime the host does nothing but install its handler.
void RaiseInvalidParameter();

}  // namespace userauth
