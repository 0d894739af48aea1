#pragma once

/// @file
/// The user-authentication service. A program's way through it: docs/integrating.md. What each operation sends, stores
/// and logs, its operation event, and what to do after each failure: docs/operations.md.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "AccountSdk.h"
#include "AccountStateLock.h"
#include "OwnedModule.h"
#include "UserAuthExport.h"
#include "UserAuthTypes.h"

class GlobalParamWrapper;
namespace Json {
class Value;
}

/// The access-token refresh object of the service. Carries no data.
class RefreshTokenOperate {
public:
    virtual ~RefreshTokenOperate();  ///< Nothing to release.
};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-qualifiers"  // two results are const, as clients link against them
#endif

/// The user-authentication service: one object per process that holds the account state and runs every operation.
///
/// Operations are synchronous: they run on the caller's thread and block for the whole exchange. Several may run at
/// once. Each stores what its own reply said; the last one wins. No lock is held during an exchange or a callback.
///
/// Operations throw nothing, with one exception: RequestUserInfo, when no thread can be started. The getters and
/// setters of the account state, GetTraceID and BuildHeaders throw std::bad_alloc when memory runs out.
///
/// A reply text has room for 40959 bytes. A longer one raises the C runtime's invalid-parameter condition, which ends
/// the process unless the host's handler returns. InitSysConf, ActiveUser, ReportLoginTime, RequestClientLogReport and
/// the two downloads have no such limit.
///
/// Log lines: module 10; severity 0 a summary, 2 progress, 5 a failure (docs/troubleshooting.md has each). Where
/// nothing else is said, a function logs nothing and makes no operation event.
///
/// Wide texts are UTF-16. A reply's member that is missing or of the wrong type reads as empty text or 0.
class USERAUTH_API UserAuthService {
public:
    /// The singleton, created by the first call (any thread; concurrent first callers wait) and destroyed at process
    /// exit. Creation loads ZVAccountSdk.dll from the library's own folder. When that fails a message box shows the
    /// system's error code and blocks until it is closed; the service is created nevertheless, and its SDK operations
    /// answer -1 or false.
    /// The box pumps messages: no message handler of the host may call this meanwhile.
    /// Logs "Load ZMS SDK library successed!" at severity 2, or "Error: Load ZMS SDK library failed!" at 5.
    /// @return the service, never null.
    static UserAuthService* GetInstance();

    /// Releases the account SDK's library without calling its "Uninit". At process exit.
    ~UserAuthService();
    UserAuthService(const UserAuthService&) = delete;
    UserAuthService& operator=(const UserAuthService&) = delete;

#if !defined(_MSC_VER)
    /// Fills the object storage with zero bytes before construction. Only GetInstance calls it; MSVC generates its own
    /// (/sdl).
    /// @param size  of the object, in bytes
    void __autoclassinit2(std::size_t size);
#endif

    /// @name Account state
    /// Any thread; each call is atomic. The setters of the tokens and of the user id hand the value to the parameter
    /// store before another thread can read it from here. Empty or 0 until an operation has learnt it.
    /// @{

    /// Signs out of the account state: empties access token, refresh token, user id and portrait path. Leaves
    /// everything else, and the parameter store, as they are.
    void Clear();

    /// @return the access token
    const std::wstring GetCurrentAT();
    /// @return the refresh token
    const std::wstring GetCurrentRT();
    /// @return the user id
    const std::wstring GetCurrentUserID();
    /// @return the person's display name
    const std::wstring GetCurrentUserName();
    /// @return the portrait's URL at the platform
    const std::wstring GetCurrentUserHeadImageUrl();
    /// @return the portrait's file on this machine; empty while it is not there
    const std::wstring GetCurrentUserHeadImageLocalPath();
    /// @return the registration country as two letters
    const std::wstring GetCurrentCountryCode();
    /// @return the account's brand, as the platform numbers brands
    int GetCurrentUserAccountBrandID();

    /// @param accessToken  empty: none
    void SetCurrentAT(const std::wstring& accessToken);
    /// @param refreshToken  empty: none
    void SetCurrentRT(const std::wstring& refreshToken);
    /// The name has three r's, as it is exported.
    /// @param userId  empty: none
    void SetCurrrentUserID(const std::wstring& userId);
    /// @param path  empty: no portrait
    void SetCurrentUserHeadImageLocalPath(const std::wstring& path);
    /// Sets four fields at once; the user id goes to the parameter store too.
    /// @param userId        the user id
    /// @param userName      the display name
    /// @param headImageUrl  the portrait's URL
    /// @param brandId       the account's brand
    void SetCurrentUserInfo(const std::wstring& userId, const std::wstring& userName, const std::wstring& headImageUrl,
                            int brandId);

    /// @}

    /// @name Account state read without the lock
    /// The host orders these itself. It reads one of them after the operation that writes it has returned, on the same
    /// thread or with an ordering of its own. It does not run two writers of one of them at once. The writers are:
    /// - country code: RequestAT
    /// - language type, privilege: UpdateRegistInfo
    /// - client-log flag: UpdateRegistInfo, RequestClientLogReport
    /// - activation: InitSysConf, ActiveUser
    /// - available country, valid modules: InitSysConf
    /// - real user key: SetRealUserKey
    ///
    /// InitSysConf and ActiveUser read the country code without the lock too: do not run them while RequestAT runs.
    /// @{

    /// @return the registration country, UTF-8
    std::string GetCountryCode();
    /// @return the language type, the platform's own text
    std::string GetLanguageType() const;
    /// @return the platform's privilege flag
    bool GetCurrentPriviledge();
    /// @return whether client logs are to be reported
    const bool GetClientLogReportStatus();
    /// @return whether the account is activated
    bool IsActiveAccount();
    /// @return whether the client is available in the account's country
    bool IsAvailableCountry();
    /// @return the modules that are switched on, such as "Drive"; empty: none
    std::vector<std::wstring> GetValidModule();
    /// Keeps a key for the client's modules; the service does not use it.
    /// @param key  its bytes
    void SetRealUserKey(std::vector<std::uint8_t> key);
    /// @return what SetRealUserKey was given; empty: nothing
    std::vector<std::uint8_t> GetRealUserKey();

    /// @}

    /// @return the parameter store, which the service does not own
    GlobalParamWrapper* GetGPWPtr();

    /// @name Tokens
    /// Log lines, events, replies and what a client does after each outcome: docs/operations/tokens.md.
    /// @{

    /// Exchanges an authorization code (ASCII, null reads as empty) for access token, refresh token and registration
    /// country, and stores them. The second argument is sent. The first is not used; it belongs to the exported name.
    ///
    /// Event: 250, 5, 0. A failure line when the reply has no token or no country.
    /// @param code               not used
    /// @param authorizationCode  what the account SDK's callback brought
    /// @return true when the portal answered 200 with an access token, a country and the result code "0"; false on any
    /// other outcome, and tokens may be stored then: Clear()
    bool RequestAT(std::string code, const char* authorizationCode);

    /// Obtains a new access token with the stored refresh token; the refresh token stays. Without a refresh token the
    /// answer is false, and nothing is sent. When the portal answers 200 without a usable token, the callback below
    /// runs before this returns, on this thread and without the lock. On any other status it does not run. Success
    /// clears the store's AT-expired flag. A token that arrives after a Clear on another thread is stored: the last
    /// store wins. A host that signs out waits for its refresh to end, or clears again after it. Event: 321, 0, 0,
    /// unless nothing was sent. Every failure has a line at severity 5.
    /// @return true when a new access token is stored; false: the old one stays
    const bool GetAccessTokenByRefrshToken();

    /// Sets what runs when a sign-in is needed again; an empty function clears it. It may call any member, start a
    /// refresh (nested, on the same thread) or register another callback. Not to be called while another thread
    /// refreshes.
    /// @param callback  runs on the refreshing thread
    void SetAtExpireCallback(const std::function<void()>& callback);

    /// Fetches the application's own access token and hands it to the parameter store, also when it is empty. The
    /// failure line is logged after a success too: kept as it is. No event.
    /// @return true on every 200; look at the store's GetAppAT()
    bool RequestApplicationAT();

    /// Takes over the sign-in of an earlier client version. That one left a refresh token in the configuration store,
    /// protected for this user of this machine. This restores it, refreshes the access token with it and looks up the
    /// user id. A refresh token that was restored stays when a later step fails. The store's item is not changed, and
    /// its age is not checked. The registration country stays what it was: empty in a process that has not called
    /// RequestAT.
    /// Log lines and events are those of the refresh and of RequestUserID.
    /// @return the user id; empty when there is no usable legacy sign-in or a step failed
    std::wstring GetOldVersionUserId();

    /// @}

    /// @name Requests
    /// @{

    /// Trace id of one request: command (at least five digits), "11", Unix time in seconds, eight pseudo-random digits,
    /// with "_" between them. Two calls for one command within a second give the same id.
    /// @param command  the kind of operation
    /// @return the id
    std::wstring GetTraceID(BaseCmd command);

    /// The headers of one request.
    /// @param type     the set that it carries; docs/operations.md has them
    /// @param traceId  the request's trace id
    /// @return name to value
    std::map<std::wstring, std::wstring> BuildHeaders(HeadType type, const std::wstring& traceId);

    /// @}

    /// @name Identity and profile
    /// Log lines, events, replies and what a client does after each outcome: docs/operations/identity.md.
    /// @{

    /// Looks up the user id at the gateway and stores it, also when it is empty. As with the refresh, a reply that
    /// arrives after a Clear on another thread is stored; that holds for all of these.
    /// @return true on every 200; look at GetCurrentUserID()
    bool RequestUserID();
    /// The same at the sync server.
    /// @return true on every 200
    bool RequestUserIdFromSyncServer();

    /// Fetches user id, display name, portrait URL and brand and stores them.
    ///
    /// A portrait URL is downloaded by a background thread into the file "HeadPortrait" of the store's local
    /// application-data folder. The thread stores that path, or empty text unless the download's status was 200, and
    /// posts kPortraitChangedMessage to the store's main window. The message comes before the file is closed. Without a
    /// URL the path is emptied and the message posted at once. Two calls in a row may write the file at once.
    ///
    /// The thread keeps this library loaded until it ends; at process exit it just stops. Throws std::system_error when
    /// it cannot be started, and nothing else. Event: 251, 5, 0.
    /// @return true on every 200; false: the profile stays
    bool RequestUserInfo();

    /// Looks up what the portal knows of the account at its registration place: language type, privilege flag and
    /// whether client logs are reported. Sends the access token, and the country that RequestAT stored: empty when it
    /// did not run in this process. What the reply does not say, or says in another type, stays as it was. No event.
    /// @return true when the portal answered 200 with the result code "0"; false: everything stays
    bool UpdateRegistInfo();

    /// Any thread; asks nobody.
    /// @return whether the registration country that RequestAT stored is "CN"; false when there is none
    bool IsChinaAccount();

    /// @}

    /// @name System configuration, reports, login devices
    /// Log lines, events, replies and what a client does after each outcome: docs/operations/configuration.md.
    /// @{

    /// Fetches the system configuration and takes from it whether the client is available in the account's country,
    /// whether the account is activated and which modules are switched on. A document that does not name them means:
    /// not available, no modules. A document that does not tell the activation leaves it as it was, even when it is
    /// that of another account: docs/decisions/0006-account-activation.md. No event.
    /// @return true when the server answered 200 or 201 with JSON; false: everything stays
    bool InitSysConf();

    /// Has the server refresh the account's activation; the server may activate an account by it.
    /// No event.
    /// @return true when the server answered 200 or 201 and told the state, which IsActiveAccount then gives; false:
    /// the state stays
    bool ActiveUser();

    /// Reports that the client has finished the data initialisation of a business. A failure is in the log only. No
    /// event.
    /// @param business  UTF-8, sent as it stands
    void ReportLoginTime(std::string business);

    /// Asks whether this user's client logs are to be reported. No event.
    /// @return true: GetClientLogReportStatus gives the answer; false: it gives what it gave before
    bool RequestClientLogReport();

    /// Appends the devices that signed in to the account lately, in the server's order; devices is not cleared. The
    /// reply text is logged. No event.
    /// @param devices  receives them
    /// @return true when the server answered 200, without a usable list too; false: nothing is appended
    bool GetLoginDevicesHistory(std::vector<DeviceTag>& devices);

    /// @}

    /// @name Contacts
    /// Log lines, events, replies and what a client does after each outcome: docs/operations/contacts.md.
    /// @{

    /// Downloads the user's contacts as a vCard file to filePath, whose former content is lost, and logs how many there
    /// are. A failed download leaves a file with what came until then. The whole text is in memory too. Event after a
    /// success: 148, 1, 0 with the number.
    /// @param url       of the portal's export
    /// @param filePath  its folder exists
    /// @param cookies   names and values of the portal's login
    /// @return true when the server answered 200, even when the file could not be written
    bool ExportContracts(std::wstring url, std::wstring filePath, std::map<std::wstring, std::wstring> cookies);

    /// @}

    /// @name Account SDK
    /// Thin calls on the caller's thread. They return the SDK's own code, or -1 when its entry point is missing. The
    /// host calls InitZms before any other of them and before its first request, then ZmsSignIn, and UnInitializeSDK at
    /// shutdown. Log lines and events: docs/operations/account-sdk.md.
    /// @{

    /// Tells the parameter store to start sending, initialises the SDK and registers the callback.
    /// @param callback  the SDK calls it on threads of its own
    /// @return 0 on success, else the first code that is not 0
    int InitZms(ZmsNotifyCallback callback);
    /// When the SDK's "Init" fails, its "Uninit" is called.
    /// @return 0 on success, else the code of "Uninit", which may be 0 too
    ZvIdErrorType InitializeSDK();
    /// Ends the SDK's callbacks.
    /// @return the SDK's code
    ZvIdErrorType UnInitializeSDK();
    /// @param callback  replaces the one before
    /// @return the SDK's code
    ZvIdErrorType RegisterNotifyFunctionInvoke(ZmsNotifyCallback callback);
    /// Starts the sign-in; its outcome, with the authorization code, comes through the callback. Event before the call:
    /// 248, 5, 4.
    /// @return the SDK's code; 0: the callback will come
    ZvIdErrorType ZmsSignIn();
    /// Shows the platform's own window for the account. A failure has a line at severity 5.
    /// @return the SDK's code
    ZvIdErrorType OpenAccountCenterInvoke();
    /// Gives the SDK the logout entry to show.
    /// @param name         UTF-8
    /// @param description  UTF-8
    /// @return the SDK's code
    ZvIdErrorType RegisterLogout(std::string& name, std::string& description);
    /// @param userId  who is signed in here
    /// @return whether somebody else is signed in at the SDK; false on every failure
    bool IsZmsAccountChanged(std::wstring& userId);
    /// @return whether somebody is signed in at the SDK; false on every failure
    bool IsZmsSignIn();

    /// @}

    /// Asks the routing service. Logs two HTTP lines, no event.
    /// @param url      of the service, with everything
    /// @param headers  receives the reply's headers; empty after a transport failure
    /// @return the reply text of a 200; empty text on any other outcome
    std::string GetRtqRemoteInfo(std::wstring url, std::map<std::string, std::string>& headers);

private:
    friend class UserAuthServiceAccess;  // the one door for tests; the library does not define it
    struct Storage;

    UserAuthService();

    bool LoadZMSSDKLibrary();
    void UpdateAppIdConfig();
    std::wstring GetRandom(int length);
    std::string GetAuthorizationContents();
    Json::Value StringToJson(std::string text);
    int GetSysConfigInfo(std::string& reply);
    void InitPcAvailable(Json::Value& root);
    bool InitActiveAccount(Json::Value& root);
    void InitInvalidModules(Json::Value& root);
    void ContractsCounts(std::string content);

    bool m_bSdkLoaded = false;
    std::wstring m_strSdkVersion;   // reserved, read by no operation
    std::wstring m_strSdkDeviceId;  // the SDK text field of the authorization header; see InitializeSDK
    std::wstring m_strSdkDomain;    // reserved, read by no operation
    AccountStateLock m_lock;        // guards tokens, user identity and profile
    OwnedModule m_hSdkModule;
    RefreshTokenOperate m_refreshTokenOperate;
    AccountSdkEntryPoints m_sdk;
    std::int32_t m_nOauthHttpStatusCode = 0;
    std::int32_t m_nOauthSubErrorCode = 0;
    std::string m_strLanguageType;
    std::string m_strResultCode;
    std::wstring m_strCurrentAT;
    std::wstring m_strCurrentRT;
    std::wstring m_strCurrentUserID;
    std::wstring m_strCurrentUserName;
    std::wstring m_strHeadImageUrl;
    std::wstring m_strHeadImageLocalPath;
    std::wstring m_strCountryCode;
    std::int32_t m_nAccountBrandID = 0;
    std::int32_t m_nAtExpires = 0;
    std::int32_t m_nAppAtExpires = 0;
    bool m_bPriviledge = false;
    bool m_bClientLogReport = false;
    bool m_bActiveAccount = false;
    bool m_bAvailableCountry = false;
    std::string m_strResultDesc;
    std::wstring m_strTraceIdCode = L"11";
    std::function<void()> m_atExpireCallback;
    std::vector<std::wstring> m_vecValidModules;
    std::vector<std::uint8_t> m_vecRealUserKey;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

extern "C" {
/// Never read or changed by the library.
extern USERAUTH_API int g_nUserAuthService;
/// Does nothing.
/// @return 0
USERAUTH_API int FnUserAuthService();
}
