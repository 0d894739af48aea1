#pragma once

#include <filesystem>
#include <string>

namespace host {

// Sets "platform_url" in the account SDK's configuration file, and "client_id" when the file has none; other members
// and comments stay. A missing file is made. Throws HostError when the file holds something else or cannot be written.
void ConfigureAccountSdk(const std::filesystem::path& file, const std::string& platformUrl);

}  // namespace host
