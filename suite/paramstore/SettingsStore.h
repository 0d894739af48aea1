#pragma once

#include <mutex>
#include <string>

#include "ClientConfiguration.h"
#include "ConfigurationText.h"
#include "SystemUuid.h"

namespace suite {

// The process's deployment settings and the identity of this installation. Any thread.
class SettingsStore {
public:
    static SettingsStore& Instance();

    // GlobalParamWrapper::LoadConfiguration.
    bool Load(ConfigurationText text, std::string& error);

    std::wstring Text(std::wstring ClientConfiguration::*setting) const;
    std::wstring LegacyItem(int number) const;  // empty when there is none

    std::wstring AppDataFolder() const;
    SystemIdentity SystemUuid();

private:
    std::mutex m_loadMutex;  // one Load at a time: each builds on what the one before stored
    mutable std::mutex m_mutex;
    ClientConfiguration m_configuration;  // guarded by m_mutex

    std::mutex m_uuidMutex;  // held while the file is read and written; apart, so that no other getter waits for a disk
    std::wstring m_uuidFolder;
    SystemIdentity m_identity;  // of m_uuidFolder; empty until asked for
};

}  // namespace suite
