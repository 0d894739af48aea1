#pragma once

/// @file
/// The suite's parameter store.

#include <cstdint>
#include <memory>
#include <string>

#include "SuiteExport.h"

/// A window handle as the platform's own headers declare it, without including them.
struct HWND__;

/// The signed-in user's record that every module of the client may read. The eight key fields lie next to each other in
/// this order. Texts are zero-terminated; a key field holds the plain key bytes, zero-filled when there is no key.
/// The store hands out a reference and does not guard it: writers and readers of one field must be ordered by the
/// client.
struct st_UserInfo {
    wchar_t driveKeyUuid1[33];   ///< name of the drive's key of type 1
    wchar_t driveKeyUuid3[33];   ///< name of the drive's key of type 3
    std::uint8_t driveKey1[17];  ///< 16 bytes
    std::uint8_t driveKey3[33];  ///< 32 bytes
    wchar_t photoKeyUuid1[33];   ///< name of the photo library's key of type 1
    wchar_t photoKeyUuid3[33];   ///< name of the photo library's key of type 3
    std::uint8_t photoKey1[17];  ///< 16 bytes
    std::uint8_t photoKey3[33];  ///< 32 bytes
};

/// Items that the configuration store keeps from earlier client versions.
enum class ConfigEntityEnum : int {
    kLegacyRefreshToken = 0,  ///< base64 text of a data-protection blob: refresh token followed by a time stamp
};

/// The process-wide parameter store: deployment settings in, tokens and ids of the signed-in user in and out.
/// Every member may be called from any thread; each call is atomic by itself. No member throws anything but
/// std::bad_alloc, and one that does changed nothing. While the process ends (its other threads are gone) the getters
/// return empty values and the setters do nothing.
class PARAMSTORE_API GlobalParamWrapper {
public:
    /// @return the process's one store, never null
    static GlobalParamWrapper* GetInstance();

    GlobalParamWrapper(const GlobalParamWrapper&) = delete;
    GlobalParamWrapper& operator=(const GlobalParamWrapper&) = delete;

    /// Reads the client's configuration file (JSON, UTF-8, comments allowed) and replaces the settings it names; the
    /// others keep their values. Members, all optional texts: "portalUrl", "gatewayUrl", "syncServerUrl",
    /// "userInformationServiceUrl", "basicServiceUrl" (base URLs, see BaseUrlFault), "countryCode", "clientMode",
    /// "appDataLocalPath" and "stateFolder" (absolute folders; the system UUID is kept in the latter; default: the
    /// local application-data folder), and the object "legacyItems" (item number as text to stored text). False with a
    /// UTF-8 text of the form "FILE:LINE: KEY: reason" when the file cannot be read or a member is wrong; nothing is
    /// changed then.
    /// @param file   any path, UTF-16
    /// @param error  receives the text
    /// @return whether the settings were taken
    bool LoadConfiguration(const std::wstring& file, std::string& error);
    /// The same from a text in memory; FILE of the error text is "configuration".
    /// @param json   UTF-8
    /// @param error  receives the text
    /// @return whether the settings were taken
    bool LoadConfigurationText(const std::string& json, std::string& error);

    /// What keeps a UTF-8 text from being a base URL of the configuration, in words like "must name a host"; empty when
    /// nothing does. Operations append their paths and queries to a base URL as it stands. It has the scheme http or
    /// https in any letter case and a host, perhaps a port from 1 to 65535 and a path. It has no slash at its end, and
    /// no blank, control character, backslash, user name, query or fragment.
    /// @param url  UTF-8
    /// @return the fault; empty: none
    static std::string BaseUrlFault(const std::string& url);

    /// @return the portal's base URL; empty until configured, as the others
    std::wstring GetPortalUrl() const;
    /// @return the gateway's base URL
    std::wstring GetGWUrl() const;
    /// @return the sync server's base URL
    std::wstring GetSyncServerUrl() const;
    /// @return the user-information service's base URL
    std::wstring GetUserInformationserviceUrl() const;
    /// @return the basic service's base URL
    std::wstring GetBasicUrl() const;

    /// Identity of this installation: 32 lower-case hexadecimal digits, made from the system's random source on first
    /// use and kept in the state folder. It is made only when there is none, or when its file can be read and holds
    /// anything else. A file that another program holds is waited for, two seconds at most. When it still cannot be
    /// read it is left as it is, and this process has an identity of its own; likewise when it cannot be written.
    /// @return the identity
    std::wstring GetSystemUUid() const;
    /// @return why that is an identity of this process only, UTF-8, with the file and the system's error code; empty
    /// when it is the stored one
    std::string GetSystemUUidFault() const;
    /// @return the country that requests name; empty until configured
    std::wstring GetCountryCode() const;
    /// @return the client mode that requests name; "1" until configured
    std::wstring GetZvClientMode() const;
    /// @return the folder for per-user files of this machine, without trailing separator: a drive's root is "C:"
    std::wstring GetAppDataLocalPath() const;

    /// @param window  receives the service's messages; null: none
    void SetMainWnd(HWND__* window);
    /// @return the window; null until the client sets it
    HWND__* GetMainWnd() const;

    /// @name Values of the signed-in user
    /// Pushed by the authentication service, read by the other modules. The store hands the three tokens to
    /// Logger::SetSecret, so that no log line shows one.
    /// @{

    /// @param accessToken  empty: none
    void SetCurrentAt(const std::wstring& accessToken);
    /// @return what was set last; empty until then
    std::wstring GetCurrentAt() const;
    /// @param refreshToken  empty: none
    void SetCurrentRt(const std::wstring& refreshToken);
    /// @return what was set last; empty until then
    std::wstring GetCurrentRt() const;
    /// @param userId  empty: none
    void SetUserID(const std::wstring& userId);
    /// @return what was set last; empty until then
    std::wstring GetUserID() const;
    /// @param applicationAccessToken  empty: none
    void SetAppAT(const std::wstring& applicationAccessToken);
    /// @return what was set last; empty until then
    std::wstring GetAppAT() const;
    /// @param expired  whether the access token was refused
    void SetAtIsExpired(bool expired);
    /// @return what was set last; false until then
    bool GetAtIsExpired() const;
    /// @param start  whether modules may send
    void SetStartSend(bool start);
    /// @return what was set last; false until then
    bool GetStartSend() const;

    /// @}

    /// @return the one record, all zero at first
    st_UserInfo& GetUserInfo();

private:
    GlobalParamWrapper();
    ~GlobalParamWrapper();

    struct State;
    std::unique_ptr<State> m_state;
};

/// Stored items of earlier client versions, from the "legacyItems" of the same configuration file.
class PARAMSTORE_API ConfigEntityManager {
public:
    /// @return the process's one manager, never null
    static ConfigEntityManager* GetInstance();

    /// Any thread.
    /// @param item  which one
    /// @return the stored text, empty when there is none
    std::wstring GetConfigContentDatas(ConfigEntityEnum item) const;

private:
    ConfigEntityManager() = default;
};
