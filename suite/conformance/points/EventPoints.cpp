#include <EventAdminModule.h>

#include <string>
#include <thread>

#include "Examination.h"

namespace conformance {

namespace {

EventAdminModule& Hub() {
    return *EventAdminModule::GetInstance();
}

// A subscription for as long as it lives.
class Subscription {
public:
    Subscription(SuiteEvent event, EventAdminModule::Listener listener)
        : m_id(Hub().Subscribe(event, std::move(listener))) {}
    ~Subscription() { Hub().Unsubscribe(m_id); }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    EventAdminModule::SubscriptionId Id() const { return m_id; }

private:
    EventAdminModule::SubscriptionId m_id;
};

// Whether a listener ran that nobody may call while the process ends.
bool g_isCalled = false;

constexpr SuiteEvent kDrive = SuiteEvent::kSyncDriveKeyOk;
constexpr SuiteEvent kPhoto = SuiteEvent::kCloudPhotoKeyOk;

void ExamineSubscriptions(Examination& examination) {
    examination.Point("GetInstance gives one object", [] {
        EventAdminModule* const hub = EventAdminModule::GetInstance();
        Require(hub != nullptr && hub == EventAdminModule::GetInstance(), "another object, or none");
    });
    examination.Point("Subscribe gives an id that is never 0, and to each its own", [] {
        const Subscription first(kDrive, [](SuiteEvent) {});
        const Subscription second(kDrive, [](SuiteEvent) {});
        Require(first.Id() != 0 && second.Id() != 0 && first.Id() != second.Id(), "0, or one id twice");
    });
    examination.Point("Subscribe of an empty listener gives 0",
                      [] { RequireEqual(Hub().Subscribe(kDrive, nullptr), 0U, "the id"); });
    examination.Point("Unsubscribe tells whether the id was known", [] {
        const Subscription subscription(kDrive, [](SuiteEvent) {});
        Require(Hub().Unsubscribe(subscription.Id()), "false for a known one");
        Require(!Hub().Unsubscribe(subscription.Id()), "true for one that was unsubscribed");
        Require(!Hub().Unsubscribe(subscription.Id() + 1000), "true for one that never was");
    });
}

void ExamineListeners(Examination& examination) {
    examination.Point("each listener gets its own event, as the argument too", [] {
        std::string calls;
        const Subscription drive(kDrive, [&](SuiteEvent event) { calls += event == kDrive ? "drive " : "wrong "; });
        const Subscription photo(kPhoto, [&](SuiteEvent event) { calls += event == kPhoto ? "photo " : "wrong "; });
        Hub().SyncDriveKeyOk();
        RequireEqual(calls, std::string("drive "), "what SyncDriveKeyOk called");
        Hub().CloudPhotoKeyOk();
        RequireEqual(calls, std::string("drive photo "), "what both called");
    });
    examination.Point("listeners run on the raising thread, before the call returns", [] {
        std::thread::id ranOn;
        const Subscription subscription(kDrive, [&](SuiteEvent) { ranOn = std::this_thread::get_id(); });
        Hub().SyncDriveKeyOk();
        Require(ranOn == std::this_thread::get_id(), "on another thread, or not at all");
    });
    examination.Point("listeners run in the order of their subscription", [] {
        std::string calls;
        const Subscription first(kDrive, [&](SuiteEvent) { calls += "1"; });
        const Subscription second(kDrive, [&](SuiteEvent) { calls += "2"; });
        const Subscription third(kDrive, [&](SuiteEvent) { calls += "3"; });
        Hub().SyncDriveKeyOk();
        RequireEqual(calls, std::string("123"), "the order");
    });
    examination.Point("a listener that throws does not stop the next", [] {
        bool next = false;
        const Subscription thrower(kDrive, [](SuiteEvent) { throw std::runtime_error("listener"); });
        const Subscription other(kDrive, [&](SuiteEvent) { next = true; });
        Hub().SyncDriveKeyOk();
        Require(next, "the next was not called");
    });
    examination.Point("a listener that was unsubscribed is not taken up again, by a raise under way either", [] {
        std::string calls;
        EventAdminModule::SubscriptionId victim = 0;
        const Subscription first(kDrive, [&](SuiteEvent) { Hub().Unsubscribe(victim); });
        const Subscription second(kDrive, [&](SuiteEvent) { calls += "called"; });
        victim = second.Id();
        Hub().SyncDriveKeyOk();
        Hub().SyncDriveKeyOk();
        RequireEqual(calls, std::string(), "what ran");
    });
}

// The raiser's own thread would deadlock under a lock that is held: the watch of the examination tells it.
void ExamineLock(Examination& examination) {
    examination.Point("a listener may subscribe, unsubscribe and raise", [] {
        std::string calls;
        EventAdminModule::SubscriptionId late = 0;
        EventAdminModule::SubscriptionId once = 0;
        const Subscription nested(kPhoto, [&](SuiteEvent) { calls += "nested "; });
        const Subscription subscription(kDrive, [&](SuiteEvent) {
            if (late == 0) {
                late = Hub().Subscribe(kDrive, [&](SuiteEvent) { calls += "late "; });
                Hub().Unsubscribe(once);
                Hub().CloudPhotoKeyOk();
            }
        });
        once = subscription.Id();
        Hub().SyncDriveKeyOk();
        calls += "| ";
        Hub().SyncDriveKeyOk();
        Hub().Unsubscribe(late);
        Require(calls == "nested | late " || calls == "nested late | late ", "the calls were " + Shown(calls));
    });
    examination.Point("while a listener runs, another thread may subscribe, raise and unsubscribe", [] {
        const Subscription subscription(kDrive, [](SuiteEvent) {
            std::thread([] {
                const Subscription other(kPhoto, [](SuiteEvent) {});
                Hub().CloudPhotoKeyOk();
            }).join();
        });
        Hub().SyncDriveKeyOk();
    });
    examination.Point("four threads at once: every raise reaches a lasting listener once", [] {
        std::atomic<int> calls{0};
        const Subscription lasting(kDrive, [&](SuiteEvent) { ++calls; });
        std::thread threads[4];
        for (std::thread& thread : threads) {
            thread = std::thread([] {
                for (int round = 0; round < 500; ++round) {
                    const Subscription passing(kDrive, [](SuiteEvent) {});
                    Hub().SyncDriveKeyOk();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        RequireEqual(calls.load(), 2000, "the number of calls");
    });
}

}  // namespace

void ExamineEventAdmin(Examination& examination) {
    ExamineSubscriptions(examination);
    ExamineListeners(examination);
    ExamineLock(examination);
    // Stays, for the end of the process.
    Hub().Subscribe(kPhoto, [](SuiteEvent) { g_isCalled = true; });
}

void ExamineEventAdminAtTheEnd() {
    g_isCalled = false;
    Hub().CloudPhotoKeyOk();
    const auto id = Hub().Subscribe(kDrive, [](SuiteEvent) { g_isCalled = true; });
    Hub().SyncDriveKeyOk();
    Hub().Unsubscribe(id);
    Require(!g_isCalled, "a listener was called");
}

}  // namespace conformance
