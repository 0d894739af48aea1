#pragma once

/// @file
/// Types and values of the service's interface.

#include <cstdint>
#include <string>

/// Window message that tells the host's main window of a changed portrait; both parameters are 0. A fixed number, not a
/// registered message.
inline constexpr unsigned kPortraitChangedMessage = 0x0C87;

/// The two services that have sync keys, as the key server numbers them.
inline constexpr wchar_t kSyncDriveDataType[] = L"11";   ///< the sync drive
inline constexpr wchar_t kCloudPhotoDataType[] = L"12";  ///< the photo library

/// The two types of sync keys. A key of any other type is passed over.
inline constexpr int kKeyType1 = 1;  ///< 16 bytes
inline constexpr int kKeyType3 = 3;  ///< 32 bytes

/// Which standard header set a request carries; any other value yields the common headers only.
enum class HeadType : int {
    kAccount = 0,       ///< account servers: authorization and content type
    kUser = 1,          ///< with the user id and the client version
    kDevice = 2,        ///< with the operating system and the package name
    kCodeExchange = 3,  ///< before there is a token: empty authorization and the site cookie
    kAccessToken = 4,   ///< the plain access token as authorization
};

/// Kind of operation, printed into the trace id.
enum class BaseCmd : int {
    kRefreshAccessToken = 10005,   ///< GetAccessTokenByRefrshToken
    kRequestAccessToken = 10006,   ///< code exchange and application token
    kLoginDevicesHistory = 10007,  ///< GetLoginDevicesHistory
    kRegistrationPlace = 12003,    ///< UpdateRegistInfo
};

/// Result of the account-SDK operations: 0, -1, or the SDK entry point's own return code unchanged.
enum class ZvIdErrorType : std::int32_t {
    kSuccess = 0,             ///< done, or begun
    kEntryPointMissing = -1,  ///< the SDK is not loaded or does not export the entry point
};

/// One device of the login history.
struct DeviceTag {
    std::wstring aliasName;           ///< the person's own name for it
    std::wstring devDisplayName;      ///< the maker's name for it
    std::wstring deviceCategory;      ///< the platform's own text
    std::wstring deviceId;            ///< the platform's own text
    std::wstring reservedText;        ///< never filled
    std::wstring lastUpdateTime;      ///< the server's own text
    std::wstring opDesc;              ///< what was reported of the device last
    std::int32_t reservedNumber = 0;  ///< never filled
    std::int32_t deviceType = 0;      ///< as the platform numbers types
};

/// First argument of the notification callback. The values are the account SDK's; these are the ones that the reference
/// SDK sends. Both strings are UTF-8, zero-terminated, never null, and valid during the call only.
enum class MessageType : std::int32_t {
    kSignInSucceeded = 1,  ///< first: the single-use authorization code; second: empty
    kSignInFailed = 2,     ///< first: the SDK's error code in decimal; second: the reason in words
    kSignedOut = 3,        ///< both empty
    kAccountChanged = 4,   ///< first: the user id that is signed in now; second: empty
};

/// The host's notification callback. The SDK calls it on threads of its own, more than one at a time perhaps.
using ZmsNotifyCallback = void (*)(MessageType type, char* first, char* second);
