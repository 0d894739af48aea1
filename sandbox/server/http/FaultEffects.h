#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

#include "http/Exchange.h"
#include "http/Faults.h"

namespace sandbox {

// Changes status and body as the fault says. A reply whose announced length is the fault's does not go out in chunks.
void SpoilReply(const Fault& fault, PlatformReply& reply);

// How a spoilt reply goes out: the announced length, then the first and the second part of the body with a pause
// between them.
struct Delivery {
    std::optional<std::size_t> announced = 0;  // nothing: no length is announced
    std::size_t firstPart = 0;
    std::size_t secondPart = 0;
    std::chrono::milliseconds pause{};
    bool close = false;  // the connection, after the second part
};

// Whether the fault touches delivery at all, and how a body of that size is then delivered.
bool ShapesDelivery(const Fault& fault);
Delivery PlanDelivery(const Fault& fault, std::size_t bodySize);

}  // namespace sandbox
