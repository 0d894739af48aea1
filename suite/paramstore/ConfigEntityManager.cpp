#include "ParamStore.h"
#include "SettingsStore.h"

ConfigEntityManager* ConfigEntityManager::GetInstance() {
    static ConfigEntityManager instance;
    return &instance;
}

std::wstring ConfigEntityManager::GetConfigContentDatas(ConfigEntityEnum item) const {
    return SettingsStore::Instance().LegacyItem(static_cast<int>(item));
}
