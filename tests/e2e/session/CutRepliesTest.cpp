#include "AccountFields.h"
#include "HttpCall.h"
#include "PortraitWindow.h"
#include "SandboxSession.h"

namespace {

class CutReplies : public SandboxSession {
protected:
    // An operation of each kind, against a server whose whole reply has the body.
    struct Operation {
        const char* name;
        std::string body;
        std::function<bool(const std::string& base)> run;
    };

    CutReplies() {
        SignInWhole();
        m_service->SetAtExpireCallback([this] { ++m_callbacks; });
    }
    ~CutReplies() override { m_service->SetAtExpireCallback(nullptr); }

    // Without what the profile's reply tells, which is always whole.
    Fields State() {
        Fields state = AccountFields(*m_service);
        state["callbacks"] = std::to_wstring(m_callbacks);
        for (const char* told : {"account brand", "portrait URL", "user name"}) {
            state.erase(told);
        }
        return state;
    }

    bool FetchPortrait(const std::string& url) {
        if (!m_profile) {
            m_profile = std::make_unique<RawServer>(std::vector<RawReply>{OkReply(
                R"({"userId":")" + Narrow(m_service->GetCurrentUserID()) + R"(","profilePhotoLink":")" + url + "\"}")});
        }
        UsePlatform(Narrow(m_profile->Url(L"")));
        EXPECT_TRUE(m_service->RequestUserInfo() && m_window.Messages(1) == 1);
        return !m_service->GetCurrentUserHeadImageLocalPath().empty();
    }

    std::vector<Operation> Operations() {
        UserAuthService& s = *m_service;
        const std::wstring file = (m_folder / "contacts.vcf").wstring();
        return {
            {"RequestUserID", R"({"uid":"1"})", [&](const auto&) { return s.RequestUserID(); }},
            {"GetAccessTokenByRefrshToken", R"({"result":0,"token":"a"})",
             [&](const auto&) { return s.GetAccessTokenByRefrshToken(); }},
            {"GetAccessTokenByRefrshToken, refused", "{}",
             [&](const auto&) { return s.GetAccessTokenByRefrshToken() || m_callbacks > 0; }},
            {"RequestAT", R"({"accessToken":"b","registerCountryCode":"CN","result":{"code":"0"}})",
             [&](const auto&) { return s.RequestAT("", "code"); }},
            {"InitSysConf", "{}", [&](const auto&) { return s.InitSysConf(); }},
            {"ExportContracts", "BEGIN:VCARD",
             [&, file](const auto& base) { return s.ExportContracts(Wide(base), file, {}); }},
            {"portrait", "ok", [&](const auto& base) { return FetchPortrait(base); }},
        };
    }

    int m_callbacks = 0;
    PortraitWindow m_window;
    std::unique_ptr<RawServer> m_profile;
};

}  // namespace

TEST_F(CutReplies, ChangeNothingBeforeTheirLastByte) {
    for (const Operation& operation : Operations()) {
        const std::vector<RawReply> script = CutAtEveryByte(OkReply(operation.body).bytes);
        RawServer server(script);
        UsePlatform(Narrow(server.Url(L"")));
        const Fields state = State();
        for (std::size_t size = 0; size + 1 < script.size(); ++size) {
            EXPECT_FALSE(operation.run(Narrow(server.Url(L"")))) << operation.name << ", byte " << size;
            EXPECT_EQ(State(), state) << operation.name << ", byte " << size;
        }
        EXPECT_TRUE(operation.run(Narrow(server.Url(L"")))) << operation.name << ", whole";
        EXPECT_EQ(server.Requests().size(), script.size()) << operation.name;
    }
}

// On kept handles, where the HTTP library once kept a pointer into freed memory.
TEST_F(CutReplies, HeadersThatBeginWithABlankHarmNoOperation) {
    for (const Operation& operation : Operations()) {
        std::string bytes = OkReply(operation.body).bytes;
        bytes.insert(bytes.find("\r\n") + 2, " folded: a\r\n");
        RawServer server(std::vector<RawReply>(50, {bytes}));
        UsePlatform(Narrow(server.Url(L"")));
        for (int turn = 0; turn < 50; ++turn) {
            EXPECT_TRUE(operation.run(Narrow(server.Url(L"")))) << operation.name << ", turn " << turn;
        }
    }
}
