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
// lock: a listener may subscribe, unsubscribe or raise. One that throws does not stop the next. While the process ends
// (its other threads are gone) the hub does nothing.
class EVENTADMIN_API EventAdminModule {
public:
    using Listener = std::function<void(SuiteEvent)>;
    using SubscriptionId = std::uint64_t;

    static EventAdminModule* GetInstance();

    EventAdminModule(const EventAdminModule&) = delete;
    EventAdminModule& operator=(const EventAdminModule&) = delete;

    // Returns an id for Unsubscribe, never 0; 0 when the listener is empty.
    SubscriptionId Subscribe(SuiteEvent event, Listener listener);

    // After it returned no thread takes the listener up again; a call that another thread has already taken up may
    // still run, even begin. False when the id is not known.
    bool Unsubscribe(SubscriptionId id);

    void SyncDriveKeyOk();
    void CloudPhotoKeyOk();

private:
    EventAdminModule();
    ~EventAdminModule();

    struct State;
    std::unique_ptr<State> m_state;
};
