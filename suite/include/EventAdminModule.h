#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "SuiteExport.h"

// Events that modules of the client announce to each other.
enum class SuiteEvent : int {
    kSyncDriveKeyOk = 1,   // the sync drive's key is in the parameter store
    kCloudPhotoKeyOk = 2,  // the photo library's key is in the parameter store
};

// The event hub. Any thread. Listeners run on the raising thread, in the order of their subscription, without the hub's
// lock: a listener may subscribe, unsubscribe or raise. One that throws does not stop the next.
class EVENTADMIN_API EventAdminModule {
public:
    using Listener = std::function<void(SuiteEvent)>;
    using SubscriptionId = std::uint64_t;

    static EventAdminModule* GetInstance();

    EventAdminModule(const EventAdminModule&) = delete;
    EventAdminModule& operator=(const EventAdminModule&) = delete;

    // Returns an id for Unsubscribe, never 0; 0 when the listener is empty.
    SubscriptionId Subscribe(SuiteEvent event, Listener listener);

    // After it returned the listener is not started again; a call that runs already on another thread may still be
    // running. False when the id is not known.
    bool Unsubscribe(SubscriptionId id);

    void SyncDriveKeyOk();
    void CloudPhotoKeyOk();

private:
    EventAdminModule();
    ~EventAdminModule();

    struct State;
    std::unique_ptr<State> m_state;
};
