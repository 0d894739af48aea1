#include <ParamStore.h>

#include "FaultSession.h"

using Form = FaultedOperation::Form;
using Place = FaultedOperation::Place;

// NOLINTNEXTLINE(readability-function-size): one table
std::vector<FaultedOperation> FaultSession::Operations() {
    UserAuthService& s = *m_service;
    st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    const std::string refreshed = R"({"result":0,"token":"T#"})";
    const std::string refreshLine = "refresh AT error statusCode: <c>";
    const std::string noUser = "user id=|user name=|portrait URL=|account brand=";
    const std::string portrait = "portrait path=its file";
    const auto refresh = [&s] { return s.GetAccessTokenByRefrshToken(); };
    const auto migrate = [&s] { return !s.GetOldVersionUserId().empty(); };
    return {
        {"RequestAT", "/getAccessTokenByCode", Form::kPost,
         R"({"accessToken":"T#","refreshToken":"R#","registerCountryCode":"C#","result":{"code":"0"}})",
         "access token=T#|refresh token=R#|country=C#", "RequestCountryCode httpcode:<c>", true,
         [&s] { return s.RequestAT("", "code"); }, false, "access token=|refresh token=|country="},
        {"GetAccessTokenByRefrshToken", "/refreshtoken", Form::kPost, refreshed, "access token=T#", refreshLine, true,
         refresh, false, "callbacks=1"},
        {"GetAccessTokenByRefrshToken, refused", "/refreshtoken", Form::kPost, R"({"result":1})", "callbacks=1",
         refreshLine, true, [this, refresh] { return refresh() || m_callbacks > 0; }, true, "callbacks=1"},
        {"GetOldVersionUserId, refresh", "/refreshtoken", Form::kPost, refreshed, "access token=T#|user id=U#",
         refreshLine, true, migrate, false, "callbacks=1", "", Place::kFirst},
        {"GetOldVersionUserId, look-up", "/gateway", Form::kGet, R"({"uid":"U#"})", "access token=T#|user id=U#",
         "HttpCode:<c>", true, migrate, false, "access token=T#|user id=", "access token=T#", Place::kSecond},
        {"RequestApplicationAT", "/getAppAccessToken", Form::kPost, R"({"accessToken":"A#"})", "application token=A#",
         "Get ApplyAT Failed! httpcode = <c>", true, [&s] { return s.RequestApplicationAT(); }, true,
         "application token="},
        {"UpdateRegistInfo", "/getRegisterInfo", Form::kPost,
         R"({"result":{"code":"0"},"languageType":"L#","privilege":@,"clientLogReport":@})",
         "language=L#|privilege=%|client log report=%", "Error: UpdateRegistInfo failed, httpcode = <c>", true,
         [&s] { return s.UpdateRegistInfo(); }},
        {"RequestUserID", "/gateway", Form::kGet, R"({"uid":"U#"})", "user id=U#", "HttpCode:<c>", true,
         [&s] { return s.RequestUserID(); }, true, "user id="},
        {"RequestUserIdFromSyncServer", "/drive/v1/about", Form::kGet, R"({"user":{"userId":"U#"}})", "user id=U#",
         "RequestUserId httpcode=<c>", true, [&s] { return s.RequestUserIdFromSyncServer(); }, true, "user id="},
        {"RequestUserInfo", "/v1/users", Form::kGet, R"({"userId":"U#","displayName":"N#","accountBrand":7})",
         "user id=U#|user name=N#|portrait URL=|account brand=7|portrait path=",
         "Error: GetUserInfo failed, httpcode = <c>", true,
         [this, &s] { return s.RequestUserInfo() && m_window.Messages(1) == 1; }, true, noUser + "|portrait path="},
        {"RequestUserInfo, portrait", "/photo", Form::kDownload, "photo #", portrait, "", false,
         [this, &s] {
             EXPECT_TRUE(s.RequestUserInfo() && m_window.Messages(1) == 1);
             return !s.GetCurrentUserHeadImageLocalPath().empty();
         },
         true, portrait, "portrait path=", Place::kPortrait},
        {"InitSysConf", "/sysConfInit", Form::kBasic,
         R"({"result":0,"userStatus":%,"params":{"funcfg_pc_available":"~","funcfg_drive":"~"}})",
         "active account=%|available country=%|drive=%", "GetSysConfigInfo httpcode:<c>", true,
         [&s] { return s.InitSysConf(); }},
        {"ActiveUser", "/sysConfRefresh", Form::kBasic, R"({"result":0,"userStatus":%})", "active account=%",
         "ActiveUser httpcode:<c>", true, [&s] { return s.ActiveUser(); }},
        {"RequestClientLogReport", "/getUserRegister", Form::kBasic,
         R"({"result":0,"resultMap":{"clientLogReport":"~"}})", "client log report=%",
         "requestClientLogReport HttpCode: <c>", false, [&s] { return s.RequestClientLogReport(); }},
        {"GetLoginDevicesHistory", "/getLastOperationRecord", Form::kPost, R"({"opRecordList":[{"deviceId":"D#"}]})",
         "devices=D#", "Error: GetLoginDevicesHistory failed!", true,
         [this, &s] { return s.GetLoginDevicesHistory(m_devices); }, true},
        // Its outcome is in the log only.
        {"ReportLoginTime", "/postOpDesc", Form::kBasic, "{}", "", "ReportLoginTime httpcode:<c>", false,
         [&s] { return s.ReportLoginTime("b"), t_code == 200 || t_code == 201; }, true},
        {"ExportContracts", "/contacts", Form::kDownload, "BEGIN:VCARD #", "text=BEGIN:VCARD #",
         "Error: ExportContracts failed!", false,
         [this, &s] {
             const std::filesystem::path file = m_folder / "contacts.vcf";
             return s.ExportContracts(Wide(m_platform + "/contacts"), file.wstring(), {}) && Keep(ReadFile(file));
         },
         true, "text=<o>"},
        // Its result is the text.
        {"GetRtqRemoteInfo", "/routing", Form::kGet, "R#", "text=R#", "", false,
         [this, &s] {
             std::map<std::string, std::string> headers;
             return Keep(s.GetRtqRemoteInfo(Wide(m_platform + "/routing"), headers)) && t_code == 200;
         },
         true, "text=<o>", "text="},
        {"InitUserSyncKey, public key", "/publicKey", Form::kGet,
         R"({"publicKey":")" + m_peer.PublicKeyText() + R"(","version":"1"})", "drive key=K#|photo key=K#", "", false,
         [this] { return m_keys.InitUserSyncKey(); }, false, "", "", Place::kFirst},
        {"InitUserSyncKey, drive's list", "dataType=11", Form::kGet, "<keys>", "drive key=K#", "get Keylist fail!",
         false, [this, &record] { return record.photoKey3[0] = 1, m_keys.InitUserSyncKey(); }, false, "", "",
         Place::kSecond},
        {"InitUserSyncKey, photos' list", "dataType=12", Form::kGet, "<keys>", "photo key=K#", "get Keylist fail!",
         false, [this, &record] { return record.driveKey1[0] = 1, m_keys.InitUserSyncKey(); }, false, "", "",
         Place::kSecond},
    };
}
