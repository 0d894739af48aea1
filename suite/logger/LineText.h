#pragma once

#include <string>
#include <string_view>

namespace suite {

// "summary", "progress", "failure", or the number of any other severity.
std::string SeverityName(int severity);

class SecretValues;

// UTF-8 of a message, with "***" for each of the secrets; null: there are none. Texts beyond 64 Ki units are cut and
// say so; a secret that the cut goes through is masked before.
std::string LogTextOf(std::wstring_view text, const SecretValues* secrets);

// The text as it may stand in a log file: line breaks are followed by an indentation, so that no message can forge a
// line of its own; other control characters and the Unicode line separators are written as \xNN and \uNNNN. Tabs stay.
std::string EscapeForLog(std::string_view text);

}  // namespace suite
