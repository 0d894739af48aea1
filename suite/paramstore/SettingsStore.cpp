#include "SettingsStore.h"

#include <exception>
#include <optional>
#include <utility>

#include "LocalFolders.h"
#include "ProcessState.h"

namespace suite {
namespace {

constexpr wchar_t kDefaultStateFolderName[] = L"\\UserAuthService";

}  // namespace

// Never destroyed: threads and other modules' static objects may still read it while the process ends.
SettingsStore& SettingsStore::Instance() {
    static SettingsStore* const instance = new SettingsStore;
    return *instance;
}

bool SettingsStore::Load(ConfigurationText text, std::string& error) try {
    if (ProcessIsEnding()) {
        error = "the process is ending";
        return false;
    }
    const std::lock_guard<std::mutex> oneAtATime(m_loadMutex);
    ClientConfiguration base;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        base = m_configuration;
    }
    std::optional<ClientConfiguration> configuration = ReadClientConfiguration(text, std::move(base), error);
    if (!configuration) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::swap(m_configuration, *configuration);
    return true;
} catch (const std::exception& failure) {
    error = failure.what();
    return false;
}

std::wstring SettingsStore::Text(std::wstring ClientConfiguration::*setting) const {
    if (suite::ProcessIsEnding()) {
        return std::wstring();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_configuration.*setting;
}

std::wstring SettingsStore::LegacyItem(int number) const {
    if (suite::ProcessIsEnding()) {
        return std::wstring();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_configuration.legacyItems.find(number);
    return found == m_configuration.legacyItems.end() ? std::wstring() : found->second;
}

std::wstring SettingsStore::AppDataFolder() const {
    if (suite::ProcessIsEnding()) {
        return std::wstring();
    }
    std::wstring folder = Text(&ClientConfiguration::appDataLocalPath);
    return folder.empty() ? LocalAppDataFolder() : folder;
}

SystemIdentity SettingsStore::SystemUuid() {
    if (ProcessIsEnding()) {
        return {};
    }
    std::wstring folder = Text(&ClientConfiguration::stateFolder);
    if (folder.empty()) {
        folder = LocalAppDataFolder();
        folder +=
            folder.empty() ? L"" : kDefaultStateFolderName;  // no folder at all: the identity lasts for the process
    }
    const std::lock_guard<std::mutex> lock(m_uuidMutex);
    if (m_identity.uuid.empty() || folder != m_uuidFolder) {
        m_identity = LoadOrCreateSystemUuid(folder);
        m_uuidFolder = std::move(folder);
    }
    return m_identity;
}

}  // namespace suite
