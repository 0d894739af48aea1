#pragma once

#include <filesystem>
#include <string>

namespace host {

// Loads a configuration file into the parameter store. Throws HostError with kExitUsage and the place of the fault.
void LoadParameterStore(const std::filesystem::path& file);

// Where the store and the service keep their files. An empty folder leaves the choice to the store.
struct StoreFolders {
    std::filesystem::path state;  // the system UUID
    std::filesystem::path user;   // the signed-in user's files; must exist
};

// Points every service of the store to one base URL, the gateway to "/gateway" below it.
void PointParameterStoreTo(const std::string& platformUrl, const StoreFolders& folders);

// Gives the store an earlier client's sign-in, as item 0 of its legacy items. Its other legacy items go.
void StoreLegacyItem(const std::wstring& item);

}  // namespace host
