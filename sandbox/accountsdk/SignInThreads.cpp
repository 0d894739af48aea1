#include "SignInThreads.h"

#include <windows.h>
// After windows.h.
#include <process.h>

#include <algorithm>
#include <chrono>

#include "OwnModule.h"
#include "SignInWithPerson.h"

namespace accountsdk {
namespace {

constexpr std::chrono::seconds kLongestWait{20};

}  // namespace

struct SignInThreads::SignIn {
    SignIn(SignInThreads& owner, const SdkConfiguration& configuration, SignInArguments signInArguments,
           NotifyCallback notify)
        : threads(owner),
          client(configuration.platform),
          mode(configuration.signIn),
          arguments(std::move(signInArguments)),
          callback(notify) {}

    SignInThreads& threads;
    PlatformClient client;
    const SignInMode mode;
    const SignInArguments arguments;
    const NotifyCallback callback;
    HMODULE module = nullptr;
    unsigned threadId = 0;   // guarded by the owner's mutex
    bool cancelled = false;  // likewise
};

bool SignInThreads::Start(const SdkConfiguration& configuration, SignInArguments arguments, NotifyCallback callback) {
    auto signIn = std::make_shared<SignIn>(*this, configuration, std::move(arguments), callback);
    auto parameter = std::make_unique<std::shared_ptr<SignIn>>(signIn);
    signIn->module = ReferenceOwnModule();
    if (!signIn->module) {
        return false;
    }
    std::uintptr_t thread = 0;
    try {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_running.push_back(signIn);
        thread = _beginthreadex(nullptr, 0, &ThreadMain, parameter.get(), 0, &signIn->threadId);
    } catch (const std::bad_alloc&) {
    }
    if (thread == 0) {
        Remove(signIn);
        FreeLibrary(signIn->module);  // not the last reference: the caller holds one
        return false;
    }
    static_cast<void>(parameter.release());  // the thread's now
    CloseHandle(reinterpret_cast<HANDLE>(thread));
    return true;
}

bool SignInThreads::CancelAndWait() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (const auto& signIn : m_running) {
        signIn->cancelled = true;
    }
    const unsigned self = GetCurrentThreadId();
    return m_ended.wait_for(lock, kLongestWait, [this, self] {
        return std::all_of(m_running.begin(), m_running.end(),
                           [self](const auto& signIn) { return signIn->threadId == self || !signIn->cancelled; });
    });
}

unsigned __stdcall SignInThreads::ThreadMain(void* parameter) {
    HMODULE module = nullptr;
    {
        const std::unique_ptr<std::shared_ptr<SignIn>> signIn(static_cast<std::shared_ptr<SignIn>*>(parameter));
        module = (*signIn)->module;
        Run(*signIn);
        (*signIn)->threads.Remove(*signIn);
    }
    FreeLibraryAndExitThread(module, 0);
}

void SignInThreads::Run(const std::shared_ptr<SignIn>& signIn) try {
    const SignInReply reply =
        signIn->mode == SignInMode::kAtOnce
            ? signIn->client.SignIn(signIn->arguments)
            : SignInWithPerson(signIn->client, signIn->arguments, signIn->mode == SignInMode::kOpenPage,
                               [&] { return signIn->threads.MayDeliver(*signIn); });
    // Writable copies: the callback takes char*.
    std::string first = reply.code == kOk ? reply.authorizationCode : std::to_string(static_cast<int>(reply.code));
    std::string second = reply.reason;
    const MessageType type = reply.code == kOk ? MessageType::kSignInSucceeded : MessageType::kSignInFailed;
    if (signIn->threads.MayDeliver(*signIn)) {
        signIn->callback(type, first.data(), second.data());
    }
} catch (...) {  // out of memory, or the callback's: nobody is left to tell
}

bool SignInThreads::MayDeliver(const SignIn& signIn) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return !signIn.cancelled;
}

void SignInThreads::Remove(const std::shared_ptr<SignIn>& signIn) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_running.remove(signIn);
    m_ended.notify_all();
}

}  // namespace accountsdk
