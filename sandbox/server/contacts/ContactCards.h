#pragma once

#include <cstddef>
#include <string>

#include "http/Exchange.h"

namespace sandbox {

// That many contacts in vCard 3.0 (RFC 2426), UTF-8; names beyond ASCII are among any three of them. A note that is not
// empty goes into the first card.
std::string ContactCards(std::size_t count, const std::string& note);

// One card over and over, cut off after size bytes.
StreamedBody RepeatedCard(std::size_t size);

}  // namespace sandbox
