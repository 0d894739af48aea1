#pragma once

// USERAUTH_BUILD is defined while UserAuthService.dll itself is compiled.
#if !defined(_WIN32)
#define USERAUTH_API
#elif defined(USERAUTH_BUILD)
#define USERAUTH_API __declspec(dllexport)
#else
#define USERAUTH_API __declspec(dllimport)
#endif

#if defined(_MSC_VER)
// The exported classes hold standard-library members: host and library are built with one compiler and runtime.
#pragma warning(disable : 4251)
#endif
