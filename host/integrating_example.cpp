#include <Logger.h>
#include <ParamStore.h>
#include <UserAuthService.h>
#include <UserSyncKeyService.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <mutex>
#include <system_error>

// What the account's thread has to do. Any thread may put a task in.
class AccountTasks {
public:
    void Put(std::function<void()> task) {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_tasks.push_back(std::move(task));
        m_arrived.notify_one();
    }
    // Runs one task; false when none came in time.
    bool RunNext(std::chrono::seconds limit) {
        std::unique_lock<std::mutex> hold(m_lock);
        if (!m_arrived.wait_for(hold, limit, [this] { return !m_tasks.empty(); })) {
            return false;
        }
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        hold.unlock();
        task();
        return true;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_arrived;
    std::deque<std::function<void()>> m_tasks;
};

// Never destroyed: the account SDK may call back until the process is gone.
AccountTasks& Tasks() {
    static AccountTasks* const tasks = new AccountTasks;
    return *tasks;
}

UserAuthService& Service() {
    return *UserAuthService::GetInstance();
}

bool StartSuite() {
    LoggerSettings log;
    log.file = L"client.log";
    std::string error;
    if (!Logger::Configure(log, error) ||
        !GlobalParamWrapper::GetInstance()->LoadConfiguration(L"client.json", error)) {
        std::printf("%s\n", error.c_str());
        return false;
    }
    return true;
}

void SignOut() {
    UserSyncKeyService().ClearUserSyncKey();
    Service().SetCurrentAT(L"");
    Service().SetCurrentRT(L"");
    Service().SetCurrrentUserID(L"");
    GlobalParamWrapper::GetInstance()->SetAppAT(L"");
    Service().Clear();
}

void FinishSignIn(const std::string& code) {
    Logger::SetSecret("authorization code", std::wstring(code.begin(), code.end()));
    if (!Service().RequestAT(code, code.c_str())) {
        std::puts("the platform does not take the code");
        SignOut();
        return;
    }
    try {
        if (!Service().RequestUserInfo() || Service().GetCurrentUserID().empty()) {
            std::puts("no profile: name and portrait stay as they were");
        }
    } catch (const std::system_error&) {
        std::puts("no thread for the portrait");
    }
    Service().InitSysConf();           // IsAvailableCountry(), GetValidModule(), IsActiveAccount()
    Service().UpdateRegistInfo();      // GetLanguageType(), GetCurrentPriviledge()
    Service().RequestApplicationAT();  // for other modules: the store's GetAppAT()
    const bool hasKeys = UserSyncKeyService().InitUserSyncKey();
    std::printf("signed in, %s sync keys\n", hasKeys ? "with" : "without");
}

void StartSignIn() {
    if (Service().ZmsSignIn() != ZvIdErrorType::kSuccess) {
        std::puts("the account SDK cannot sign in");
    }
}

// On a thread of the SDK's.
void OnAccountEvent(MessageType type, char* first, char* second) {
    Tasks().Put([type, text = std::string(first), reason = std::string(second)] {
        switch (type) {
            case MessageType::kSignInSucceeded:
                FinishSignIn(text);
                break;
            case MessageType::kSignInFailed:
                std::printf("not signed in: %s (%s)\n", reason.c_str(), text.c_str());
                break;
            case MessageType::kSignedOut:
                SignOut();
                break;
            case MessageType::kAccountChanged:
                SignOut();
                StartSignIn();
                break;
        }
    });
}

void RefreshToken() {
    const std::wstring used = Service().GetCurrentAT();
    if (Service().GetAccessTokenByRefrshToken() && Service().GetCurrentAT() != used) {
        std::puts("a new access token");
    }
}

void PrepareForExpiry() {
    Service().SetAtExpireCallback([] {
        Tasks().Put([] {
            SignOut();
            StartSignIn();
        });
    });
}

int main() {
    if (!StartSuite()) {
        return 2;
    }
    PrepareForExpiry();
    if (const int code = Service().InitZms(&OnAccountEvent); code != 0) {
        std::printf("the account SDK does not start: code %d\n", code);
        return 1;
    }
    StartSignIn();
    while (Tasks().RunNext(std::chrono::seconds(10))) {  // a client runs until the person leaves
    }
    Service().UnInitializeSDK();
    Service().SetAtExpireCallback(nullptr);
    Logger::Shutdown();
}
