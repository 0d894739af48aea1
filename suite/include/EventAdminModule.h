#pragma once

/// @file
/// The suite's event hub.

#include <cstdint>
#include <functional>
#include <memory>

#include "SuiteExport.h"

/// Events that modules of the client announce to each other.
enum class SuiteEvent : int {
    kSyncDriveKeyOk = 1,   ///< the sync drive's key is in the parameter store
    kCloudPhotoKeyOk = 2,  ///< the photo library's key is in the parameter store
};

/// The event hub. Any thread. Listeners run on the raising thread, in the order of their subscription, without the
/// hub's lock: a listener may subscribe, unsubscribe or raise. One that throws does not stop the next. While the
/// process ends (its other threads are gone) the hub does nothing.
class EVENTADMIN_API EventAdminModule {
public:
    /// What is called with the event.
    using Listener = std::function<void(SuiteEvent)>;
    /// Names one subscription.
    using SubscriptionId = std::uint64_t;

    /// @return the process's one hub, never null
    static EventAdminModule* GetInstance();

    EventAdminModule(const EventAdminModule&) = delete;
    EventAdminModule& operator=(const EventAdminModule&) = delete;

    /// @param event     what to listen to
    /// @param listener  called on the raising thread
    /// @return an id for Unsubscribe, never 0; 0 when the listener is empty or memory runs out: nothing is subscribed
    SubscriptionId Subscribe(SuiteEvent event, Listener listener);

    /// After it returned no thread takes the listener up again; a call that another thread has already taken up may
    /// still run, even begin.
    /// @param id  of Subscribe
    /// @return false when the id is not known
    bool Unsubscribe(SubscriptionId id);

    /// Raises kSyncDriveKeyOk; returns when every listener has.
    void SyncDriveKeyOk();
    /// Raises kCloudPhotoKeyOk; returns when every listener has.
    void CloudPhotoKeyOk();

private:
    EventAdminModule();
    ~EventAdminModule();

    struct State;
    std::unique_ptr<State> m_state;
};
