#pragma once

// Export macros of the suite's libraries. A library defines <LIBRARY>_BUILD while it is compiled.

#if !defined(_WIN32)
#define PARAMSTORE_API
#elif defined(PARAMSTORE_BUILD)
#define PARAMSTORE_API __declspec(dllexport)
#else
#define PARAMSTORE_API __declspec(dllimport)
#endif

#if !defined(_WIN32)
#define HTTPLIB_API
#elif defined(HTTPLIB_BUILD)
#define HTTPLIB_API __declspec(dllexport)
#else
#define HTTPLIB_API __declspec(dllimport)
#endif

#if !defined(_WIN32)
#define LOGGER_API
#elif defined(LOGGER_BUILD)
#define LOGGER_API __declspec(dllexport)
#else
#define LOGGER_API __declspec(dllimport)
#endif

#if !defined(_WIN32)
#define EVENTADMIN_API
#elif defined(EVENTADMIN_BUILD)
#define EVENTADMIN_API __declspec(dllexport)
#else
#define EVENTADMIN_API __declspec(dllimport)
#endif

#if defined(_MSC_VER)
// The exported classes hold standard-library members: host and library are built with one compiler and runtime.
#pragma warning(disable : 4251)
#endif
