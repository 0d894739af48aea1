#pragma once

#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "AccountSdkContract.h"
#include "PlatformClient.h"
#include "SdkConfiguration.h"

namespace accountsdk {

// The running sign-ins: one thread each, which asks the platform, delivers the outcome through the callback and ends. A
// running thread holds a reference to this library, so that the library's code outlives it.
class SignInThreads {
public:
    // Returns at once; the callback comes later, on the new thread. False when there is no thread.
    bool Start(const SdkConfiguration& configuration, SignInArguments arguments, NotifyCallback callback);

    // Takes their callback from the running sign-ins and waits for their end, at most 20 s: no callback starts after
    // the return. False when the time ran out, as it does while a callback runs on, or with a platform whose reply
    // drips in (the platform client limits each silence, not the whole). May be called by a callback, whose own sign-in
    // is not waited for.
    bool CancelAndWait();

private:
    struct SignIn;

    static unsigned __stdcall ThreadMain(void* parameter);
    static void Run(const std::shared_ptr<SignIn>& signIn);
    bool MayDeliver(const SignIn& signIn);
    void Remove(const std::shared_ptr<SignIn>& signIn);

    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::list<std::shared_ptr<SignIn>> m_running;
};

}  // namespace accountsdk
