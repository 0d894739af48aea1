#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "SuiteExport.h"

// A window handle as the platform's own headers declare it, without including them.
struct HWND__;

// The signed-in user's record that every module of the client may read. The eight key fields lie next to each other in
// this order. Texts are zero-terminated; a key field holds the plain key bytes, zero-filled when there is no key.
// The store hands out a reference and does not guard it: writers and readers of one field must be ordered by the
// client.
struct st_UserInfo {
    wchar_t driveKeyUuid1[33];
    wchar_t driveKeyUuid3[33];
    std::uint8_t driveKey1[17];
    std::uint8_t driveKey3[33];
    wchar_t photoKeyUuid1[33];
    wchar_t photoKeyUuid3[33];
    std::uint8_t photoKey1[17];
    std::uint8_t photoKey3[33];
};

// Items that the configuration store keeps from earlier client versions.
enum class ConfigEntityEnum : int {
    kLegacyRefreshToken = 0,  // base64 text of a data-protection blob: refresh token followed by a time stamp
};

// The process-wide parameter store: deployment settings in, tokens and ids of the signed-in user in and out.
// Every member may be called from any thread; each call is atomic by itself. No member throws anything but
// std::bad_alloc, and one that does changed nothing. While the process ends (its other threads are gone) the getters
// return empty values and the setters do nothing.
class PARAMSTORE_API GlobalParamWrapper {
public:
    static GlobalParamWrapper* GetInstance();

    GlobalParamWrapper(const GlobalParamWrapper&) = delete;
    GlobalParamWrapper& operator=(const GlobalParamWrapper&) = delete;

    // Reads the client's configuration file (JSON, UTF-8, comments allowed) and replaces the settings it names; the
    // others keep their values. Members, all optional texts: "portalUrl", "gatewayUrl", "syncServerUrl",
    // "userInformationServiceUrl", "basicServiceUrl" (base URLs, see BaseUrlFault), "countryCode", "clientMode",
    // "appDataLocalPath" and "stateFolder" (absolute folders; the system UUID is kept in the latter; default: the local
    // application-data folder), and the object "legacyItems" (item number as text to stored text). False with a UTF-8
    // text of the form "FILE:LINE: KEY: reason" when the file cannot be read or a member is wrong; nothing is changed
    // then.
    bool LoadConfiguration(const std::wstring& file, std::string& error);
    // The same from a text in memory; FILE of the error text is "configuration".
    bool LoadConfigurationText(const std::string& json, std::string& error);

    // What keeps a UTF-8 text from being a base URL of the configuration, in words like "must name a host"; empty when
    // nothing does. Operations append their paths and queries to a base URL as it stands. It has the scheme http or
    // https in any letter case and a host, perhaps a port from 1 to 65535 and a path. It has no slash at its end, and
    // no blank, control character, backslash, user name, query or fragment.
    static std::string BaseUrlFault(const std::string& url);

    // Base URLs; empty until configured.
    std::wstring GetPortalUrl() const;
    std::wstring GetGWUrl() const;
    std::wstring GetSyncServerUrl() const;
    std::wstring GetUserInformationserviceUrl() const;
    std::wstring GetBasicUrl() const;

    // Identity of this installation: 32 lower-case hexadecimal digits, made from the system's random source on first
    // use and kept in the state folder. It is made only when there is none, or when its file can be read and holds
    // anything else. A file that another program holds is waited for, two seconds at most. When it still cannot be read
    // it is left as it is, and this process has an identity of its own; likewise when it cannot be written.
    std::wstring GetSystemUUid() const;
    // Why that is an identity of this process only, UTF-8, with the file and the system's error code; empty when it is
    // the stored one.
    std::string GetSystemUUidFault() const;
    std::wstring GetCountryCode() const;
    std::wstring GetZvClientMode() const;
    // Folder for per-user files of this machine, without trailing separator: a drive's root is "C:".
    std::wstring GetAppDataLocalPath() const;

    // Window that receives the service's messages; null until the client sets it.
    void SetMainWnd(HWND__* window);
    HWND__* GetMainWnd() const;

    // Pushed by the authentication service, read by the other modules. The store hands the three tokens to
    // Logger::SetSecret, so that no log line shows one.
    void SetCurrentAt(const std::wstring& accessToken);
    std::wstring GetCurrentAt() const;
    void SetCurrentRt(const std::wstring& refreshToken);
    std::wstring GetCurrentRt() const;
    void SetUserID(const std::wstring& userId);
    std::wstring GetUserID() const;
    void SetAppAT(const std::wstring& applicationAccessToken);
    std::wstring GetAppAT() const;
    void SetAtIsExpired(bool expired);
    bool GetAtIsExpired() const;
    void SetStartSend(bool start);
    bool GetStartSend() const;

    st_UserInfo& GetUserInfo();

private:
    GlobalParamWrapper();
    ~GlobalParamWrapper();

    struct State;
    std::unique_ptr<State> m_state;
};

// Stored items of earlier client versions, from the "legacyItems" of the same configuration file.
class PARAMSTORE_API ConfigEntityManager {
public:
    static ConfigEntityManager* GetInstance();

    // The stored text, empty when there is none. Any thread.
    std::wstring GetConfigContentDatas(ConfigEntityEnum item) const;

private:
    ConfigEntityManager() = default;
};
