#include "page/EventStream.h"

#include <atomic>
#include <memory>
#include <utility>

#include "http/EndpointTable.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr int kMostStreams = 16;
constexpr int kServiceUnavailable = 503;

// The place that an open stream takes; null when all are taken.
std::shared_ptr<void> TakePlace() {
    static std::atomic<int> taken{0};
    if (++taken > kMostStreams) {
        --taken;
        return nullptr;
    }
    return {&taken, [](void*) { --taken; }};
}

}  // namespace

std::string EventText(const char* name, const Json::Value& value) {
    return "event: " + std::string(name) + "\ndata: " + JsonLine(value) + "\n\n";
}

PlatformReply EventStreamReply(std::function<std::string()> news) {
    const auto place = TakePlace();
    if (place == nullptr) {
        return ErrorReply(kServiceUnavailable, "too many pages are open");
    }
    PlatformReply reply;
    reply.contentType = "text/event-stream";
    reply.headers = {{"Cache-Control", "no-store"}};
    reply.live = [place, news = std::move(news)] { return news(); };
    return reply;
}

}  // namespace sandbox
