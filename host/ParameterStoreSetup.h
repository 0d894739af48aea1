#pragma once

#include <filesystem>
#include <string>

namespace host {

// Loads a configuration file into the parameter store. Throws HostError with kExitUsage and the place of the fault.
void LoadParameterStore(const std::filesystem::path& file);

// Points every service of the store to one base URL. folder: where a file may be made for the store to read.
// stateFolder: where the store and the service keep their files; empty leaves the store's own choice.
void PointParameterStoreTo(const std::string& platformUrl, const std::filesystem::path& folder,
                           const std::filesystem::path& stateFolder);

}  // namespace host
