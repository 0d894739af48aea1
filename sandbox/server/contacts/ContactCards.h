#pragma once

#include <cstddef>
#include <string>

#include "http/Exchange.h"

namespace sandbox {

// count contacts in vCard 3.0 (RFC 2426), in UTF-8. Of any three in a row, one at least has a name beyond ASCII. The
// first card gets the note, unless it is empty.
std::string ContactCards(std::size_t count, const std::string& note);

// A body of size bytes: one card over and over, the last one cut off.
StreamedBody RepeatedCard(std::size_t size);

}  // namespace sandbox
