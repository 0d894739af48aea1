#include "ScriptedSdk.h"

// An account SDK without a will of its own. With SDK_INIT_ONLY it exports "Init" and "Uninit" and nothing else.

extern "C" {

__declspec(dllexport) SdkScript g_script;

static int Answer(const std::string& entryPoint, const std::string& arguments) {
    g_script.calls += entryPoint + "(" + arguments + ")";
    return g_script.codes[entryPoint];
}

__declspec(dllexport) int Init() { return Answer("Init", ""); }
__declspec(dllexport) int Uninit() { return Answer("Uninit", ""); }

#if !defined(SDK_INIT_ONLY)
__declspec(dllexport) int SignIn(const char* applicationId, const char* scopes, const char* location) {
    return Answer("SignIn", std::string(applicationId) + "|" + scopes + "|" + location);
}
__declspec(dllexport) int OpenAccountCenter() { return Answer("OpenAccountCenter", ""); }
__declspec(dllexport) int HasAccountChanged(const char* userId) { return Answer("HasAccountChanged", userId); }
__declspec(dllexport) int RegisterNotifyFunction(void (*callback)(int, char*, char*)) {
    return Answer("RegisterNotifyFunction", callback == nullptr ? "null" : "callback");
}
__declspec(dllexport) int IsSupportAccount() { return Answer("IsSupportAccount", ""); }
__declspec(dllexport) int GetOAuthDomain() { return Answer("GetOAuthDomain", ""); }
__declspec(dllexport) int IsAccountLoggedIn() { return Answer("IsAccountLoggedIn", ""); }
__declspec(dllexport) int SetLogoutEnable(const char* entryJson) { return Answer("SetLogoutEnable", entryJson); }
#endif
}
