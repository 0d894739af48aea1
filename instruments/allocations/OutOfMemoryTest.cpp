#include "TorturedService.h"

TEST_F(OutOfMemory, EveryAllocationOfEveryOperationMayFail) {
    std::wstring userId = L"the former user id";
    std::string name = "a name of the logout entry, or a business";
    std::map<std::string, std::string> headers;
    const std::wstring url = L"https://service.example.com/path";
    const std::wstring file = m_config.wstring() + L".vcf";
    const std::vector<std::uint8_t> key(32, 2);
    const std::wstring longText = L"a new text that takes memory of its own";
    const std::string basic =
        R"({"result":0,"userStatus":1,"params":{"funcfg_pc_available":"true","funcfg_drive":"true"}})";
    const Row rows[] = {
        {"SetCurrentAT",
         [&](UserAuthService& service) { return service.SetCurrentAT(longText), true; },
         {},
         Change::kWhole,
         true},
        {"SetCurrentRT",
         [&](UserAuthService& service) { return service.SetCurrentRT(longText), true; },
         {},
         Change::kWhole,
         true},
        {"SetCurrrentUserID",
         [&](UserAuthService& service) { return service.SetCurrrentUserID(longText), true; },
         {},
         Change::kWhole,
         true},
        {"SetCurrentUserInfo",
         [&](UserAuthService& service) { return service.SetCurrentUserInfo(longText, longText, longText, 2), true; },
         {},
         Change::kWhole,
         true},
        {"getters",
         [&](UserAuthService& service) {
             return !(service.GetCurrentAT() + service.GetCurrentRT() + service.GetCurrentUserID()).empty() &&
                    !service.GetCurrentUserName().empty() && !service.GetRealUserKey().empty();
         },
         {},
         Change::kWhole,
         true},
        {"SetRealUserKey", [&](UserAuthService& service) { return service.SetRealUserKey(Copied(key)), true; }, {}},
        {"BuildHeaders",
         [&](UserAuthService& service) {
             return !Access::BuildHeaders(service, HeadType::kCodeExchange, L"trace").empty();
         },
         {},
         Change::kWhole,
         true},
        {"GetTraceID",
         [&](UserAuthService& service) { return !service.GetTraceID(BaseCmd::kRequestAccessToken).empty(); },
         {},
         Change::kWhole,
         true},
        {"RequestAT",
         [&](UserAuthService& service) { return service.RequestAT("", "the authorization code of the test"); },
         {R"({"accessToken":"a new access token, long","refreshToken":"a new refresh token, long","expires":5,
              "registerCountryCode":"a new and long country","result":{"code":"0","desc":"a long description"}})"}},
        {"RequestApplicationAT",
         [&](UserAuthService& service) { return service.RequestApplicationAT(); },
         {R"({"accessToken":"a new application token","expires":7,"result":{"code":"a long code of the result"}})"}},
        {"GetAccessTokenByRefrshToken",
         [&](UserAuthService& service) { return service.GetAccessTokenByRefrshToken(); },
         {R"({"result":{},"token":"a new access token, long"})"},
         Change::kPieces},
        {"GetOldVersionUserId",
         [&](UserAuthService& service) { return !service.GetOldVersionUserId().empty(); },
         {R"({"result":{},"token":"a new access token, long"})", R"({"uid":"a new user id, a long one"})"},
         Change::kPieces},
        {"RequestUserID",
         [&](UserAuthService& service) { return service.RequestUserID(); },
         {R"({"uid":"a new user id, a long one"})"}},
        {"RequestUserIdFromSyncServer",
         [&](UserAuthService& service) { return service.RequestUserIdFromSyncServer(); },
         {R"({"user":{"userId":"a new user id, a long one"}})"}},
        {"RequestUserInfo",
         [&](UserAuthService& service) { return service.RequestUserInfo(); },
         {R"({"userId":"a new user id, a long one","displayName":"a new name, a long one","accountBrand":7})"},
         Change::kPieces},
        {"UpdateRegistInfo",
         [&](UserAuthService& service) { return service.UpdateRegistInfo(); },
         {R"({"result":{"code":"0"},"languageType":"a long language","privilege":true,"clientLogReport":true})"}},
        {"InitSysConf", [&](UserAuthService& service) { return service.InitSysConf(); }, {basic}},
        {"ActiveUser", [&](UserAuthService& service) { return service.ActiveUser(); }, {basic}},
        {"ReportLoginTime", [&](UserAuthService& service) { return service.ReportLoginTime(Copied(name)), false; }, {}},
        {"RequestClientLogReport",
         [&](UserAuthService& service) { return service.RequestClientLogReport(); },
         {R"({"result":0,"resultMap":{"clientLogReport":"true"}})"}},
        {"GetLoginDevicesHistory",
         [&](UserAuthService& service) { return service.GetLoginDevicesHistory(m_devices); },
         {R"({"opRecordList":[{"deviceId":"a device with a long id"},{"deviceId":"another device, long id"}]})"}},
        {"ExportContracts",
         [&](UserAuthService& service) { return service.ExportContracts(Copied(url), Copied(file), {}); },
         {"BEGIN:VCARD"}},
        {"GetRtqRemoteInfo",
         [&](UserAuthService& service) { return !service.GetRtqRemoteInfo(Copied(url), headers).empty(); },
         {"a long reply of the routing service"}},
        {"InitZms", [&](UserAuthService& service) { return service.InitZms(nullptr) == 0; }, {}},
        {"ZmsSignIn", [&](UserAuthService& service) { return service.ZmsSignIn() == ZvIdErrorType::kSuccess; }, {}},
        {"RegisterLogout",
         [&](UserAuthService& service) { return service.RegisterLogout(name, name) == ZvIdErrorType::kSuccess; },
         {}},
        {"IsZmsAccountChanged",
         [&](UserAuthService& service) { return service.IsZmsAccountChanged(userId), false; },
         {}},
        {"IsZmsSignIn", [&](UserAuthService& service) { return service.IsZmsSignIn(), false; }, {}},
        {"UpdateAppIdConfig", [&](UserAuthService& service) { return Access::UpdateAppIdConfig(service), false; }, {}},
        {"InitUserSyncKey",
         [&](UserAuthService&) { return UserSyncKeyService().InitUserSyncKey() && false; },
         {},
         Change::kPieces},
    };
    int all = 0;
    for (const Row& row : rows) {
        const int found = Findings();
        int failures[2] = {};
        Run(row, Allocator::kNew, 1 << 30, false);
        const State after = StateNow();
        const std::vector<std::string> whole = m_sent;
        Prepare(row);
        const State before = StateNow();
        for (const Allocator allocator : {Allocator::kNew, Allocator::kOpenSsl}) {
            allocatorIsOpenSsl = allocator == Allocator::kOpenSsl;
            for (const bool lasting : {false, true}) {
                int failed = 1;
                for (int number = 0; failed > 0 && Findings() == found; ++number) {
                    SCOPED_TRACE(std::string(row.name) + (allocatorIsOpenSsl ? ", OpenSSL's" : ", own") +
                                 (lasting ? " allocations from number " : " allocation number ") +
                                 std::to_string(number));
                    failed = Run(row, allocator, number, lasting);
                    failures[allocatorIsOpenSsl ? 1 : 0] += failed > 0 ? 1 : 0;
                    ExpectOldOrNew(row, before, after, lasting);
                    auto next = whole.begin();
                    for (const std::string& request : m_sent) {
                        next = std::find(next, whole.end(), request);
                        EXPECT_TRUE(next != whole.end()) << "half a request is sent: " << request;
                    }
                }
            }
        }
        all += failures[0];
        EXPECT_TRUE(failures[0] > 0 || std::strcmp(row.name, "SetRealUserKey") == 0) << row.name;
        std::printf("%-34s %5d failed allocations, %d of OpenSSL\n", row.name, failures[0], failures[1]);
    }
    EXPECT_GT(all, 300);
}

TEST_F(OutOfMemory, FreedMemoryHoldsNoKey) {
    Prepare({"InitUserSyncKey", {}, {}});
    FreedMemory freed;
    EXPECT_TRUE(UserSyncKeyService().InitUserSyncKey());
    m_service->SetRealUserKey(std::vector<std::uint8_t>(32, 0x77));
    m_service->SetRealUserKey({});
    { const std::string control = std::string(40, 'c') + "ontrol"; }
    const Uncounted uncounted;
    m_exchanged.insert({{"a key", std::string(16, 0x5A)}, {"the real key", std::string(32, 0x77)}});
    EXPECT_EQ(m_exchanged.size(), 4U);
    for (const auto& [name, bytes] : m_exchanged) {
        EXPECT_FALSE(freed.Holds(bytes)) << name;
    }
    EXPECT_TRUE(freed.Holds("ccccontrol"));
}
