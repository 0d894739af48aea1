#include "FaultSession.h"

#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>

#include <sstream>

#include "LegacyItem.h"
#include "crypto/Sha256.h"

namespace {

using Form = FaultedOperation::Form;

std::string BaseOf(const RawServer& server) { return Narrow(server.Url(L"")); }

void Replace(std::string& text, const std::string& mark, const std::string& value) {
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + value.size())) {
        text.replace(at, mark.size(), value);
    }
}

std::string Hexadecimal(std::size_t number) {
    std::ostringstream text;
    text << std::hex << number;
    return text.str();
}

// One block that is stored as it is (RFC 1951, 3.2.4).
std::string Deflated(const std::string& body) {
    const auto low = static_cast<char>(body.size() & 0xFF);
    const auto high = static_cast<char>(body.size() >> 8);
    return std::string{1, low, high, static_cast<char>(~low), static_cast<char>(~high)} + body;
}

void SetProxy(const std::string& url) {
    for (const char* variable : {"http_proxy", "https_proxy"}) {
        SetEnvironmentVariableA(variable, url.empty() ? nullptr : url.c_str());
    }
}

// Both keys of one list.
std::string KeyList(const Bytes& temporaryKey, const std::string& uuid) {
    std::string list;
    for (const int type : {kKeyType1, kKeyType3}) {
        const Bytes plain(type == kKeyType1 ? 16 : 32, 0x42);
        const std::string digest = sandbox::Sha256({plain.begin(), plain.end()});
        list += (list.empty() ? "" : ",") + (R"({"keyType":)" + std::to_string(type)) + R"(,"encryptedKey":")" +
                KeyServerPeer::Wrap(temporaryKey, plain) + R"(","keySHA256":")" +
                KeyServerPeer::Wrap(temporaryKey, {digest.begin(), digest.end()}) + R"(","keyUuid":")" + uuid + R"("})";
    }
    return R"({"keys":[)" + list + "]}";
}

}  // namespace

thread_local int FaultSession::t_code = 0;

FaultSession::FaultSession()
    : m_operations(Operations()),
      m_nobody(BaseOf(RawServer(std::vector<RawReply>{{}}))),
      m_other([this](const std::string& request) { return Answer(request); }),
      m_server([this](const std::string& request) { return Answer(request); }) {
    std::string error;
    EXPECT_TRUE(Logger::Configure({(m_folder / "faults.log").wstring(), std::size_t{1} << 30}, error)) << error;
    EXPECT_TRUE(GlobalParamWrapper::GetInstance()->LoadConfigurationText(
        R"({"legacyItems":{"0":")" + LegacyItem("R" + kLegacyTimeStamp) + "\"}}", error))
        << error;
    CurlHttpLibContext::SetExchangeObserver([this](const HttpExchange& exchange) { m_code = t_code = exchange.code; });
    m_service->SetAtExpireCallback([this] { ++m_callbacks; });
}

FaultSession::~FaultSession() {
    m_service->SetAtExpireCallback(nullptr);
    CurlHttpLibContext::SetExchangeObserver(nullptr);
    m_keys.ClearUserSyncKey();
}

std::vector<FaultedOperation> FaultSession::Operations() {
    UserAuthService& s = *m_service;
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
         refreshLine, true, migrate, false, "callbacks=1"},
        {"GetOldVersionUserId, look-up", "/gateway", Form::kGet, R"({"uid":"U#"})", "access token=T#|user id=U#",
         "HttpCode:<c>", true, migrate, false, "access token=T#|user id=", "access token=T#", true},
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
         true, portrait, "portrait path="},
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
             const bool exported = s.ExportContracts(Wide(m_platform + "/contacts"), file.wstring(), {});
             if (exported) {
                 m_text = ReadFile(file);
             }
             return exported;
         },
         true, "text=<o>"},
        // Its result is the text.
        {"GetRtqRemoteInfo", "/routing", Form::kGet, "R#", "text=R#", "", false,
         [this, &s] {
             std::map<std::string, std::string> headers;
             const std::string text = s.GetRtqRemoteInfo(Wide(m_platform + "/routing"), headers);
             const std::lock_guard<std::mutex> hold(m_lock);
             m_text = text;
             return t_code == 200;
         },
         true, "text=<o>", "text="},
        {"InitUserSyncKey, public key", "/publicKey", Form::kGet,
         R"({"publicKey":")" + m_peer.PublicKeyText() + R"(","version":"1"})", "drive key=K#|photo key=K#", "", false,
         [this] { return m_keys.InitUserSyncKey(); }},
        {"InitUserSyncKey, drive's list", "dataType=11", Form::kGet, "<keys>", "drive key=K#", "get Keylist fail!",
         false,
         [this] {
             GlobalParamWrapper::GetInstance()->GetUserInfo().photoKey3[0] = 1;
             return m_keys.InitUserSyncKey();
         },
         false, "", "", true},
        {"InitUserSyncKey, photos' list", "dataType=12", Form::kGet, "<keys>", "photo key=K#", "get Keylist fail!",
         false,
         [this] {
             GlobalParamWrapper::GetInstance()->GetUserInfo().driveKey1[0] = 1;
             return m_keys.InitUserSyncKey();
         },
         false, "", "", true},
    };
}

Fields FaultSession::State() {
    const st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    Fields state = AccountFields(*m_service);
    if (state["portrait path"] == (m_folder / "HeadPortrait").wstring()) {
        state["portrait path"] = L"its file";
    }
    state["drive"] = state["modules"].empty() ? L"" : L"1";
    state["application token"] = GlobalParamWrapper::GetInstance()->GetAppAT();
    state["devices"] = m_devices.empty() ? L"" : m_devices.back().deviceId;
    state["drive key"] = record.driveKeyUuid1;
    state["photo key"] = record.photoKeyUuid3;
    state["text"] = Wide(m_text);
    state["callbacks"] = m_callbacks == 0 ? L"" : std::to_wstring(m_callbacks);
    state.erase("modules");
    for (auto field = state.begin(); field != state.end();) {
        field = field->second.empty() ? state.erase(field) : std::next(field);
    }
    return state;
}

// What has a setter begins alike in each row; the rest keeps what the last good reply said.
void FaultSession::Prepare(const FaultedOperation& operation, const std::string& base) {
    UserAuthService& s = *m_service;
    const bool isPortrait = operation.form == Form::kDownload && operation.line.empty();
    m_link = Located(base) + "/photo";
    if (const std::string platform = Located(isPortrait ? "<server>" : base); platform != m_platform) {
        m_platform = platform;
        UsePlatform(platform);
    }
    s.SetCurrentAT(L"T");
    s.SetCurrentRT(L"R");
    s.SetCurrentUserInfo(L"U", L"N", Wide(m_link), 1);
    s.SetCurrrentUserID(L"U");
    s.SetCurrentUserHeadImageLocalPath(L"P");
    GlobalParamWrapper::GetInstance()->SetAppAT(L"A");
    GlobalParamWrapper::GetInstance()->GetUserInfo() = {};
    m_devices.clear();
    m_text = "before";
    m_callbacks = 0;
}

bool FaultSession::Survives(const FaultedOperation& operation, const Fault& fault, std::size_t cut) {
    const auto failures = [] {
        return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    };
    const int before = failures();
    SCOPED_TRACE(testing::Message() << operation.name << ": " << fault.name << ", byte "
                                    << static_cast<long long>(cut));
    ++m_number;
    Prepare(operation, fault.base);
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_asked = &operation;
        m_fault = &fault;
        m_cut = cut;
    }
    Meet(operation, fault);
    if (fault.reply.then == RawReply::Then::kKeep && !fault.reply.last.empty()) {
        Sleep(100);  // so that the late part has come
    }
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_fault = nullptr;
    }
    Prepare(operation, "<server>");
    Recover(operation);
    return failures() == before;
}

void FaultSession::Meet(const FaultedOperation& operation, const Fault& fault) {
    const bool isPost = operation.form == Form::kPost || operation.form == Form::kBasic;
    const int code = operation.form == Form::kDownload ? fault.downloadCode : isPost ? fault.postCode : fault.code;
    const bool succeeds = code == 200 || (code == 201 && operation.form == Form::kBasic);
    Fields expected = State();
    if (!succeeds) {
        expected = Changed(expected, operation.failureChanges);
    } else if (fault.other) {
        expected = Changed(expected, operation.otherChanges, *fault.other);
    } else {
        expected = Changed(expected, operation.changes);
    }
    EXPECT_TRUE(Logger::Flush(5000));
    const auto logged = std::filesystem::file_size(m_folder / "faults.log");
    SetProxy(Located(fault.proxy));
    EXPECT_EQ(operation.run(), succeeds && (!fault.other || operation.takesOther));
    SetProxy("");
    EXPECT_EQ(m_code, code);
    EXPECT_EQ(State(), expected);
    EXPECT_TRUE(Logger::Flush(5000));
    std::ifstream file(m_folder / "faults.log", std::ios::binary);
    file.seekg(static_cast<std::streamoff>(logged));
    const std::string log(std::istreambuf_iterator<char>(file), {});
    EXPECT_GT(CountOf(" ended with " + std::to_string(code) + " after ", log), 0u) << log;
    std::string line = operation.line;
    Replace(line, "<c>", std::to_string(code));
    EXPECT_TRUE(succeeds || line.empty() || CountOf(line, log) == 1) << line << " is not once in " << log;
    EXPECT_EQ(CountOf(" failed: ", log), code < 0 && operation.showsCause ? 1u : 0u) << log;
}

void FaultSession::Recover(const FaultedOperation& operation) {
    const Fields expected = Changed(State(), operation.changes);
    EXPECT_TRUE(operation.run()) << "without the fault";
    EXPECT_EQ(m_code, 200) << "without the fault";
    EXPECT_EQ(State(), expected) << "without the fault";
}

std::size_t FaultSession::ReplySize() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_replySize;
}

std::string FaultSession::Located(std::string text) const {
    Replace(text, "https<nobody>", "https" + m_nobody.substr(4));
    Replace(text, "<nobody>", m_nobody);
    Replace(text, "<server>", BaseOf(m_server));
    Replace(text, "<other>", BaseOf(m_other));
    return text;
}

std::string FaultSession::Numbered(std::string text) const {
    Replace(text, "#", std::to_string(100000 + m_number));
    // Of one length each.
    Replace(text, "@", m_number % 2 == 1 ? "true " : "false");
    Replace(text, "~", m_number % 2 == 1 ? "true" : "none");
    Replace(text, "%", m_number % 2 == 1 ? "1" : "0");
    return text;
}

Fields FaultSession::Changed(Fields fields, const std::string& changes, const std::string& other) const {
    std::istringstream parts(Numbered(changes));
    for (std::string part; std::getline(parts, part, '|');) {
        const std::size_t sign = part.find('=');
        std::string value = part.substr(sign + 1);
        Replace(value, "<o>", other);
        fields[part.substr(0, sign)] = Wide(value);
        if (value.empty() || value == "0") {
            fields.erase(part.substr(0, sign));
        }
    }
    return fields;
}

std::string FaultSession::BodyFor(const FaultedOperation& operation) const {
    if (operation.body != "<keys>") {
        return Numbered(operation.body);
    }
    const auto key = m_peer.UnwrapTemporaryKey(m_temporaryKey);
    return key ? KeyList(*key, Numbered("K#")) : "";
}

std::string FaultSession::Filled(std::string reply, const std::string& body) const {
    const std::string deflated = Deflated(body);
    reply = Located(reply);
    Replace(reply, "<n>", std::to_string(body.size()));
    Replace(reply, "<x>", Hexadecimal(body.size()));
    Replace(reply, "<m>", std::to_string(deflated.size()));
    Replace(reply, "<y>", Hexadecimal(deflated.size() - 1));
    Replace(reply, "<d>", deflated);
    Replace(reply, "<e>", deflated.substr(1));
    Replace(reply, "<b>", body);
    return reply;
}

// On the server's thread.
RawReply FaultSession::Answer(const std::string& request) {
    const std::lock_guard<std::mutex> hold(m_lock);
    const std::string line = request.substr(0, request.find("\r\n"));
    const auto names = [&line](const char* part) { return line.find(part) != std::string::npos; };
    const bool isMoved = names("/next");
    const std::string tokenName = "x-zv-tempKey: ";
    if (const std::size_t at = request.find(tokenName); at != std::string::npos) {
        m_temporaryKey = request.substr(at + tokenName.size(), 185);
    }
    if (m_fault != nullptr && !isMoved && (names(m_asked->endpoint) || names("/loop") || names("CONNECT "))) {
        RawReply reply = m_fault->reply;
        const std::string body = names("CONNECT ") ? "" : BodyFor(*m_asked);
        reply.bytes = Filled(reply.bytes, body);
        reply.last = Filled(reply.last, body);
        m_replySize = reply.bytes.size();
        if (m_cut < reply.bytes.size()) {
            return {reply.bytes.substr(0, m_cut), m_cut % 2 == 0 ? RawReply::Then::kClose : RawReply::Then::kReset};
        }
        return reply;
    }
    if (isMoved || names(m_asked->endpoint)) {
        return {RawReplyBytes("200 OK", "", BodyFor(*m_asked))};
    }
    if (names("/v1/users")) {  // on the way to the portrait
        return {RawReplyBytes(
            "200 OK", "", R"({"userId":"U","displayName":"N","accountBrand":1,"profilePhotoLink":")" + m_link + "\"}")};
    }
    for (const FaultedOperation& operation : m_operations) {
        if (names(operation.endpoint)) {
            return {RawReplyBytes("200 OK", "", BodyFor(operation))};
        }
    }
    return {RawReplyBytes("404 Not Found", "", "")};
}
