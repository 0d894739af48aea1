#include "EventAdminModule.h"

#include <map>
#include <mutex>
#include <utility>

#include "ProcessState.h"

struct EventAdminModule::State {
    struct Subscription {
        SuiteEvent event;
        std::shared_ptr<const Listener> listener;  // shared with a call that is running
    };

    // The first subscription of the event with an id in (after, last]; after becomes its id. Null: there is none.
    std::shared_ptr<const Listener> Next(SuiteEvent event, SubscriptionId& after, SubscriptionId last);
    void Raise(SuiteEvent event) noexcept;

    std::mutex mutex;
    std::map<SubscriptionId, Subscription> subscriptions;  // by id: the order of subscription
    SubscriptionId lastId = 0;
};

std::shared_ptr<const EventAdminModule::Listener> EventAdminModule::State::Next(SuiteEvent event, SubscriptionId& after,
                                                                                SubscriptionId last) {
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto it = subscriptions.upper_bound(after); it != subscriptions.end() && it->first <= last; ++it) {
        if (it->second.event == event) {
            after = it->first;
            return it->second.listener;
        }
    }
    return nullptr;
}

// Looks each listener up when its turn comes, not in one go: one that an earlier listener unsubscribed is not called.
// Those subscribed meanwhile wait for the next event, so that a listener that subscribes cannot keep this loop alive.
void EventAdminModule::State::Raise(SuiteEvent event) noexcept {
    if (suite::ProcessIsEnding()) {
        return;
    }
    SubscriptionId last = 0;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        last = lastId;
    }
    SubscriptionId after = 0;
    while (const std::shared_ptr<const Listener> listener = Next(event, after, last)) {
        try {
            (*listener)(event);
        } catch (...) {
            // A listener's failure is its own: the others still hear of the event.
        }
    }
}

// Never destroyed: other modules' static objects may still raise or unsubscribe while the process ends.
EventAdminModule* EventAdminModule::GetInstance() {
    static EventAdminModule* const instance = new EventAdminModule;
    return instance;
}

EventAdminModule::EventAdminModule() : m_state(std::make_unique<State>()) {}

EventAdminModule::~EventAdminModule() = default;

EventAdminModule::SubscriptionId EventAdminModule::Subscribe(SuiteEvent event, Listener listener) {
    if (!listener || suite::ProcessIsEnding()) {
        return 0;
    }
    try {
        auto shared = std::make_shared<const Listener>(std::move(listener));
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->subscriptions.emplace(m_state->lastId + 1, State::Subscription{event, std::move(shared)});
        return ++m_state->lastId;
    } catch (...) {
        return 0;  // out of memory: nothing was subscribed
    }
}

bool EventAdminModule::Unsubscribe(SubscriptionId id) {
    if (suite::ProcessIsEnding()) {
        return false;
    }
    std::shared_ptr<const Listener> released;  // its captures go after the lock: they may call the hub
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    const auto found = m_state->subscriptions.find(id);
    if (found == m_state->subscriptions.end()) {
        return false;
    }
    released = std::move(found->second.listener);
    m_state->subscriptions.erase(found);
    return true;
}

void EventAdminModule::SyncDriveKeyOk() {
    m_state->Raise(SuiteEvent::kSyncDriveKeyOk);
}

void EventAdminModule::CloudPhotoKeyOk() {
    m_state->Raise(SuiteEvent::kCloudPhotoKeyOk);
}
