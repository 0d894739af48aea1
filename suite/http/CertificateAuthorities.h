#pragma once

#include <memory>
#include <string>

namespace suite {

// PEM text of the authorities to trust; empty means that Windows judges.
using AuthoritiesPem = std::string;

// Remembers the file for requests that name none; empty: Windows judges. Any thread.
void SetDefaultAuthoritiesPath(const std::wstring& path);

// The authorities of a request: of its own file, else of the default file, else none. The file read last is kept for as
// long as its size and time stay. Null when the file cannot be read, is larger than any sensible bundle, or holds no
// certificate. Any thread.
std::shared_ptr<const AuthoritiesPem> AuthoritiesFor(const std::wstring& ownPath);

}  // namespace suite
