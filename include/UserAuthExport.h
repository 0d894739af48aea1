#pragma once

// USERAUTH_BUILD is defined while UserAuthService.dll itself is compiled.
#if !defined(_WIN32)
#define USERAUTH_API
#elif defined(USERAUTH_BUILD)
#define USERAUTH_API __declspec(dllexport)
#else
#define USERAUTH_API __declspec(dllimport)
#endif
