#include "SignInWithPerson.h"

#include <windows.h>
// After windows.h.
#include <objbase.h>
#include <shellapi.h>

#include <string>

namespace accountsdk {
namespace {

constexpr DWORD kAskMilliseconds = 200;

// url: plain ASCII without blanks, as the client makes it.
bool OpenInBrowser(const std::string& url) {
    constexpr INT_PTR kLargestError = 32;
    // The shell may hand the call to a component of a single-threaded apartment.
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    const HINSTANCE opened =
        ShellExecuteW(nullptr, L"open", std::wstring(url.begin(), url.end()).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    if (SUCCEEDED(apartment)) {
        CoUninitialize();
    }
    return reinterpret_cast<INT_PTR>(opened) > kLargestError;
}

}  // namespace

SignInReply SignInWithPerson(PlatformClient& client, const SignInArguments& arguments, bool opensPage,
                             const std::function<bool()>& goOn) {
    const SignInRequest request = client.OpenSignIn(arguments);
    if (request.refusal.code != kOk) {
        return request.refusal;
    }
    if (opensPage && !OpenInBrowser(request.pageUrl)) {
        return {kBrowserNotStarted, "", "the system opens no browser for " + request.pageUrl};
    }
    while (goOn()) {
        if (auto outcome = client.AskSignIn(request.id)) {
            return *std::move(outcome);
        }
        Sleep(kAskMilliseconds);
    }
    return {kSignInCancelled, "", "the SDK was uninitialised during the sign-in"};
}

}  // namespace accountsdk
