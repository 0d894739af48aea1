#pragma once

#include <map>
#include <string>

namespace suite {

// One business event as a JSON object on one line, UTF-8, without line feed; "time" is the current time in UTC. Secrets
// in the extra information are masked here, name by name and text by text: a mask over the finished JSON could break
// it.
std::string OperationLine(int basicEventType, int operationType, int actionType,
                          const std::map<std::wstring, std::wstring>& extraInformation);

}  // namespace suite
