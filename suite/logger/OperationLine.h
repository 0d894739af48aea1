#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace suite {

class SecretValues;

// One business event as a JSON object on one line, UTF-8, without line feed; "time" is the current time in UTC. Secrets
// in the extra information are masked here, name by name and text by text: a mask over the finished JSON could break
// it. secrets: null when none are known by value.
std::string OperationLine(int basicEventType, int operationType, int actionType,
                          const std::map<std::wstring, std::wstring>& extraInformation, const SecretValues* secrets);

// What takes the place of events that were dropped: "dropped", their number, and "time".
std::string DroppedEventsLine(std::uint64_t count);

}  // namespace suite
