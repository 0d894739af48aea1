#include "http/FaultEffects.h"

#include <algorithm>

#include "crypto/RandomText.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr std::size_t kGarbageBytes = 256;
// A reply with this status ends with its head (RFC 9110, 6.4.1). A client would take a body for the next reply.
constexpr int kNoContent = 204;
constexpr char kNoJsonByte = '\x81';

Json::Value OfAnotherType(const Json::Value& value) {
    switch (value.type()) {
        case Json::stringValue:
            return JsonObject({{"text", value}});
        case Json::objectValue:
        case Json::booleanValue: {
            Json::Value array(Json::arrayValue);
            array.append(value);
            return array;
        }
        case Json::arrayValue:
            return Json::Value(true);
        default:
            return Json::Value("no number");
    }
}

// Members change their types; a reply without members becomes an array.
std::string WithWrongTypes(const std::string& body) {
    try {
        auto members = ParseJsonBody(body);
        for (auto& member : members) {
            member = OfAnotherType(member);
        }
        return JsonLine(members);
    } catch (const Refusal&) {
        return "[]";
    }
}

std::string Garbage() {
    auto bytes = RandomBytes(kGarbageBytes);
    bytes.front() = kNoJsonByte;
    return bytes;
}

// Blanks before the closing brace: still the same JSON.
void Pad(std::string& body, std::size_t size) {
    if (body.size() < size) {
        body.insert(body.empty() ? 0 : body.size() - 1, size - body.size(), ' ');
    }
}

bool ReplacesBody(const Fault& fault) {
    return fault.wrongTypes || fault.body || fault.garbage || fault.oversize;
}

}  // namespace

void SpoilReply(const Fault& fault, PlatformReply& reply) {
    if (fault.status) {
        reply.status = static_cast<int>(*fault.status);
    }
    if (ReplacesBody(fault)) {
        reply.stream.reset();  // reply.body, which is empty then, is what changes below
    }
    if (fault.contentLength || fault.unframed) {
        reply.chunked = false;
    }
    if (fault.wrongTypes) {
        reply.body = WithWrongTypes(reply.body);
    }
    if (fault.body) {
        reply.body = *fault.body;
    }
    if (fault.garbage) {
        reply.body = Garbage();
    }
    if (fault.oversize) {
        Pad(reply.body, *fault.oversize);
    }
    if (reply.status == kNoContent) {
        reply.stream.reset();
        reply.body.clear();
    }
}

bool ShapesDelivery(const Fault& fault) {
    return fault.cutAfter || fault.contentLength || fault.unframed || fault.stall > std::chrono::milliseconds::zero();
}

Delivery PlanDelivery(const Fault& fault, std::size_t bodySize) {
    Delivery delivery;
    const auto sent = std::min(fault.cutAfter.value_or(bodySize), bodySize);
    const bool stalls = fault.stall > std::chrono::milliseconds::zero();
    delivery.firstPart = stalls ? std::min(fault.stallAfter.value_or(sent / 2), sent) : sent;
    delivery.secondPart = sent - delivery.firstPart;
    delivery.pause = fault.stall;
    // A reply that is cut announces more than is sent, so that the peer sees the cut. The fault's own length wins.
    delivery.announced = fault.contentLength.value_or(fault.cutAfter ? std::max(bodySize, sent + 1) : bodySize);
    if (fault.unframed) {
        delivery.announced.reset();
    }
    delivery.close = delivery.announced != sent;
    return delivery;
}

}  // namespace sandbox
