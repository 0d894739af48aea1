#include <Logger.h>
#include <ParamStore.h>
#include <UserSyncKeyService.h>

#include <algorithm>

#include "SandboxSession.h"
#include "SecretForms.h"

namespace {

template <std::size_t Size>
std::string Text(const std::uint8_t (&key)[Size]) {
    return {key, key + Size - 1};
}

class Secrets : public SandboxSession {
protected:
    // What a whole session leaves behind, by its name; the configuration that the test wrote is not of it.
    std::map<std::string, std::string> Files() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder)) {
            if (entry.is_regular_file() && entry.path().filename() != "client.json") {
                files[entry.path().filename().string()] = ReadFile(entry.path());
            }
        }
        files["SDK configuration"] = ReadFile(ProgramFolder() / "ZMSCoreConfig.json");
        return files;
    }

    // Everything that has to do with a secret, and most of it a second time, where it fails.
    void LiveThroughASession() {
        m_secrets["code"] = SignIn();
        EXPECT_TRUE(m_service->RequestAT("", m_secrets["code"].c_str()));
        m_secrets["access token"] = Narrow(m_service->GetCurrentAT());
        m_secrets["refresh token"] = Narrow(m_service->GetCurrentRT());
        EXPECT_TRUE(m_service->RequestApplicationAT());
        m_secrets["application token"] = Narrow(GlobalParamWrapper::GetInstance()->GetAppAT());
        EXPECT_TRUE(m_service->RequestUserID() && m_service->RequestUserInfo() && m_service->InitSysConf() &&
                    UserSyncKeyService().InitUserSyncKey());
        KeepKeys();
        ExportAndAskForHeaders();
        m_sandbox.Fault("/pcclient/refreshtoken", R"({"status":500})");
        EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
        EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
        m_secrets["second access token"] = Narrow(m_service->GetCurrentAT());
        UserSyncKeyService().ClearUserSyncKey();
        EXPECT_FALSE(m_service->RequestAT("", m_secrets["code"].c_str()))
            << "a code that is used again ends its session";
    }

    void KeepKeys() {
        const st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
        m_secrets["drive key 1"] = Text(record.driveKey1);
        m_secrets["drive key 3"] = Text(record.driveKey3);
        m_secrets["photo key 1"] = Text(record.photoKey1);
        m_secrets["photo key 3"] = Text(record.photoKey3);
    }

    // With the portal's cookies and the token in the URL, from a host that is not there and from the sandbox.
    void ExportAndAskForHeaders() {
        const auto cookies = m_sandbox.PortalCookies();
        for (const auto& [name, value] : cookies) {
            m_secrets["cookie " + Narrow(name)] = Narrow(value);
        }
        for (const wchar_t* host : {L"http://127.0.0.1:9", L""}) {
            const std::wstring url = *host != L'\0' ? host : m_sandbox.Url("");
            m_service->ExportContracts(url + L"/contacts/v1/export", (m_folder / "contacts.vcf").wstring(), cookies);
            std::map<std::string, std::string> headers;
            m_service->GetRtqRemoteInfo(url + L"/routing/v1/remote?access_token=" + m_service->GetCurrentAT(), headers);
        }
    }

    std::map<std::string, std::string> m_secrets;
};

}  // namespace

TEST_F(Secrets, NoFormOfOneReachesAnySinkFileOrErrorText) {
    LoggerSettings settings;
    settings.file = (m_folder / "service.log").wstring();
    settings.console = true;
    settings.consoleSeverity = kSeveritySummary;
    std::string error;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Logger::Configure(settings, error)) << error;
    LiveThroughASession();
    // The secret of an earlier client, at the wrong place of the configuration.
    GlobalParamWrapper::GetInstance()->LoadConfigurationText(
        R"({"legacyItems":{"x":")" + m_secrets["refresh token"] + R"("}})", error);
    EXPECT_TRUE(Logger::Flush(5000));
    std::map<std::string, std::string> places = Files();
    places["standard output"] = testing::internal::GetCapturedStdout();
    ASSERT_FALSE(HasFailure()) << places["standard output"];
    places["console"] = testing::internal::GetCapturedStderr();
    places["error text"] = error;
    for (const char* place : {"console", "service.log"}) {
        EXPECT_NE(places[place].find("getTokenInfo"), std::string::npos) << "control: " << place;
    }
    EXPECT_NE(error.find("legacyItems.x"), std::string::npos) << "control";
    EXPECT_GE(m_secrets.size(), 10U);
    std::size_t looks = 0;
    for (const auto& [name, secret] : m_secrets) {
        EXPECT_GE(secret.size(), 8U) << name;
        for (const auto& [form, text] : FormsOf(secret)) {
            for (const auto& [place, content] : places) {
                EXPECT_EQ(content.find(text), std::string::npos) << name << " as " << form << " in " << place;
                ++looks;
            }
        }
    }
    std::printf("%zu secrets in 9 forms in %zu places: %zu looks\n", m_secrets.size(), places.size(), looks);
}
