#include <ParamStore.h>
#include <UserAuthService.h>

#include <cstdio>

// The account SDK calls this on a thread of its own.
void OnAccountEvent(MessageType type, char* code, char* /*reason*/) {
    UserAuthService* const service = UserAuthService::GetInstance();
    const bool signedIn = type == MessageType::kSignInSucceeded && service->RequestAT(code, code);
    std::puts(signedIn ? "signed in: GetCurrentAT() has the access token" : "not signed in");
}

int main() {
    std::string error;
    if (!GlobalParamWrapper::GetInstance()->LoadConfiguration(L"client.json", error)) {
        std::puts(error.c_str());
        return 2;
    }
    UserAuthService* const service = UserAuthService::GetInstance();
    if (const int code = service->InitZms(&OnAccountEvent); code != 0) {
        std::printf("InitZms returned %d, a code of the account SDK\n", code);
        return 1;
    }
    if (service->ZmsSignIn() == ZvIdErrorType::kSuccess) {
        std::getchar();  // until the person presses Enter
    }
    service->UnInitializeSDK();
}
