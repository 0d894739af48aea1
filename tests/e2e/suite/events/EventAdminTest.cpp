#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "EventAdminModule.h"

TEST(EventAdmin, ListenersThatThrowUnsubscribeOrSubscribeDoNotDisturbTheOthers) {
    EventAdminModule* hub = EventAdminModule::GetInstance();
    std::string calls;
    EventAdminModule::SubscriptionId once = 0;
    EventAdminModule::SubscriptionId victim = 0;
    EventAdminModule::SubscriptionId late = 0;
    once = hub->Subscribe(SuiteEvent::kSyncDriveKeyOk, [&](SuiteEvent) {
        calls += "once ";
        EXPECT_TRUE(hub->Unsubscribe(once));
        EXPECT_TRUE(hub->Unsubscribe(victim));
        late = hub->Subscribe(SuiteEvent::kSyncDriveKeyOk, [&](SuiteEvent) { calls += "late "; });
        throw std::runtime_error("listener");
    });
    victim = hub->Subscribe(SuiteEvent::kSyncDriveKeyOk, [&](SuiteEvent) { calls += "victim "; });
    const auto photo = hub->Subscribe(SuiteEvent::kCloudPhotoKeyOk, [&](SuiteEvent) { calls += "photo "; });
    const auto last = hub->Subscribe(SuiteEvent::kSyncDriveKeyOk, [&](SuiteEvent event) {
        calls += event == SuiteEvent::kSyncDriveKeyOk ? "last " : "wrong event ";
    });

    hub->SyncDriveKeyOk();
    EXPECT_EQ(calls, "once last ");
    calls.clear();
    hub->SyncDriveKeyOk();
    hub->CloudPhotoKeyOk();
    EXPECT_EQ(calls, "last late photo ");

    EXPECT_TRUE(hub->Unsubscribe(last) && hub->Unsubscribe(late) && hub->Unsubscribe(photo));
    EXPECT_FALSE(hub->Unsubscribe(last));
    EXPECT_EQ(hub->Subscribe(SuiteEvent::kSyncDriveKeyOk, nullptr), 0U);
}
