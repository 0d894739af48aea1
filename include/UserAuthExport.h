#pragma once

// USERAUTH_BUILD is defined while UserAuthService.dll itself is compiled.
#if defined(USERAUTH_BUILD)
#define USERAUTH_API __declspec(dllexport)
#else
#define USERAUTH_API __declspec(dllimport)
#endif
