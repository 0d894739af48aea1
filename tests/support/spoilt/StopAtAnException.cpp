#include <EventAdminModule.h>

#include <map>

// An event hub without a lock whose raise ends with the first listener that throws.
struct EventAdminModule::State {
    void Raise(SuiteEvent event) noexcept {
        try {
            const auto now = subscriptions;
            for (const auto& [id, subscription] : now) {
                if (subscription.first == event && subscriptions.count(id) != 0) {
                    subscription.second(event);
                }
            }
        } catch (...) {
        }
    }

    std::map<SubscriptionId, std::pair<SuiteEvent, Listener>> subscriptions;
    SubscriptionId lastId = 0;
};

EventAdminModule::EventAdminModule() : m_state(std::make_unique<State>()) {}
EventAdminModule::~EventAdminModule() = default;

EventAdminModule* EventAdminModule::GetInstance() {
    static EventAdminModule* const instance = new EventAdminModule;
    return instance;
}

EventAdminModule::SubscriptionId EventAdminModule::Subscribe(SuiteEvent event, Listener listener) {
    if (!listener) {
        return 0;
    }
    m_state->subscriptions[++m_state->lastId] = {event, std::move(listener)};
    return m_state->lastId;
}

bool EventAdminModule::Unsubscribe(SubscriptionId id) { return m_state->subscriptions.erase(id) != 0; }
void EventAdminModule::SyncDriveKeyOk() { m_state->Raise(SuiteEvent::kSyncDriveKeyOk); }
void EventAdminModule::CloudPhotoKeyOk() { m_state->Raise(SuiteEvent::kCloudPhotoKeyOk); }
