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

// A field that is empty is left out.
void Set(Fields& fields, const std::string& name, const std::wstring& value) {
    fields[name] = value;
    if (value.empty() || value == L"0") {
        fields.erase(name);
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
    for (const wchar_t* variable : {L"http_proxy", L"https_proxy"}) {
        SetEnvironmentVariableW(variable, url.empty() ? nullptr : Wide(url).c_str());
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

bool FaultSession::Keep(const std::string& text) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_text = text;
    return true;
}

Fields FaultSession::State() {
    const st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    Fields state = AccountFields(*m_service);
    if (state["portrait path"] == Portrait().wstring()) {
        state["portrait path"] = L"its file";
    }
    const std::pair<const char*, std::wstring> more[] = {
        {"drive", state["modules"].empty() ? L"" : L"1"},
        {"application token", GlobalParamWrapper::GetInstance()->GetAppAT()},
        {"devices", m_devices.empty() ? L"" : m_devices.back().deviceId},
        {"drive key", record.driveKeyUuid1},
        {"photo key", record.photoKeyUuid3},
        {"text", Wide(m_text)},
        {"callbacks", m_callbacks == 0 ? L"" : std::to_wstring(m_callbacks)},
        {"modules", L""},
    };
    for (const auto& [name, value] : more) {
        Set(state, name, value);
    }
    Set(state, "portrait path", state["portrait path"]);
    return state;
}

// What has a setter begins alike in each row; the rest keeps what the last good reply said.
void FaultSession::Prepare(const FaultedOperation& operation, const Fault* fault, std::size_t cut) {
    UserAuthService& s = *m_service;
    const std::string base = Located(fault != nullptr ? fault->url : "<server>");
    const std::string platform = operation.place == FaultedOperation::Place::kPortrait ? Located("<server>") : base;
    if (platform != m_platform) {
        m_platform = platform;
        UsePlatform(platform);
    }
    const std::lock_guard<std::mutex> hold(m_lock);
    m_asked = &operation;
    m_fault = fault;
    m_cut = cut;
    m_link = base + "/photo";
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

// Whether the operation meets the fault: not one of texts alone, nor one that would fail another of its requests.
bool FaultSession::IsMetBy(const FaultedOperation& operation, const Fault& fault) {
    const bool isDownload = operation.form == Form::kDownload;
    const bool hasRoomLimit = !isDownload && operation.form != Form::kBasic && operation.body[0] == '{';
    const bool isOfTheWay = fault.url != "<server>" && (fault.bytes.empty() || fault.url[4] == 's');
    const bool isLate = fault.then == RawReply::Then::kKeep && !fault.last.empty();
    return !(isDownload && fault.hasTextLimit) && (hasRoomLimit || !fault.hasRoomLimit) &&
           !(operation.place == FaultedOperation::Place::kSecond && isOfTheWay) &&
           !(operation.place == FaultedOperation::Place::kFirst && isLate);
}

bool FaultSession::Survives(const FaultedOperation& operation, const Fault& fault, std::size_t cut) {
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    const int before = result.total_part_count();
    SCOPED_TRACE(operation.name + (": " + fault.name) + ", byte " + std::to_string(static_cast<long long>(cut)));
    const bool isPost = operation.form == Form::kPost || operation.form == Form::kBasic;
    const int special = operation.form == Form::kDownload ? fault.downloadCode : isPost ? fault.postCode : 0;
    const int code = special != 0 ? special : fault.code;
    const bool succeeds = code == 200 || (code == 201 && operation.form == Form::kBasic);
    ++m_number;
    Prepare(operation, &fault, cut);
    SetProxy(Located(fault.proxy));
    if (succeeds && fault.other) {
        Run(operation, code, operation.takesOther, operation.otherChanges, *fault.other);
    } else {
        Run(operation, code, succeeds, succeeds ? operation.changes : operation.failureChanges);
    }
    SetProxy("");
    if (fault.then == RawReply::Then::kKeep && !fault.last.empty()) {
        Sleep(100);  // so that the late part has come
    }
    SCOPED_TRACE("without the fault");
    Prepare(operation, nullptr);
    Run(operation, 200, true, operation.changes);
    return result.total_part_count() == before;
}

// NOLINTNEXTLINE(readability-function-size): the expectations are macros
void FaultSession::Run(const FaultedOperation& operation, int code, bool succeeds, const std::string& changes,
                       const std::string& other) {
    const Fields expected = Changed(State(), changes, other);
    EXPECT_TRUE(Logger::Flush(5000));
    const auto logged = std::filesystem::file_size(m_folder / "faults.log");
    EXPECT_EQ(operation.run(), succeeds);
    EXPECT_EQ(m_code, code);
    EXPECT_EQ(State(), expected);
    EXPECT_TRUE(Logger::Flush(5000));
    std::ifstream file(m_folder / "faults.log", std::ios::binary);
    file.seekg(static_cast<std::streamoff>(logged));
    const std::string log(std::istreambuf_iterator<char>(file), {});
    EXPECT_GT(CountOf(" ended with " + std::to_string(code) + " after ", log), 0u) << log;
    std::string line = operation.line;
    Replace(line, "<c>", std::to_string(code));
    EXPECT_TRUE(succeeds || code == 200 || line.empty() || CountOf(line, log) == 1)
        << line << " is not once in " << log;
    EXPECT_EQ(CountOf(" failed: ", log), code < 0 && operation.showsCause ? 1u : 0u) << log;
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
        Set(fields, part.substr(0, sign), Wide(value));
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

std::string FaultSession::Filled(std::string text, const std::string& body) const {
    const std::string deflated = Deflated(body);
    const std::pair<const char*, std::string> marks[] = {{"<ok>", "HTTP/1.1 200 OK|"},
                                                         {"<c>", "Transfer-Encoding: chunked||"},
                                                         {"<l>", "Content-Length: <n>|"},
                                                         {"<k>", "<x>|<b>|"},
                                                         {"|", "\r\n"},
                                                         {"<n>", std::to_string(body.size())},
                                                         {"<x>", Hexadecimal(body.size())},
                                                         {"<m>", std::to_string(deflated.size())},
                                                         {"<y>", Hexadecimal(deflated.size() - 1)},
                                                         {"<d>", deflated},
                                                         {"<e>", deflated.substr(1)},
                                                         {"<b>", body}};
    for (const auto& [mark, value] : marks) {
        Replace(text, mark, value);
    }
    return Located(text);
}

// What is sent without end comes in large parts.
RawReply FaultSession::FaultyReply(const std::string& body) {
    RawReply reply{Filled(m_fault->bytes, body), m_fault->then, Filled(m_fault->last, body)};
    for (const std::string part = reply.last; reply.then == RawReply::Then::kRepeat && reply.last.size() < 32768;) {
        reply.last += part;
    }
    m_replySize = reply.bytes.size();
    if (m_cut < m_replySize) {
        return {reply.bytes.substr(0, m_cut), m_cut % 2 == 0 ? RawReply::Then::kClose : RawReply::Then::kReset};
    }
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
        return FaultyReply(names("CONNECT ") ? "" : BodyFor(*m_asked));
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
