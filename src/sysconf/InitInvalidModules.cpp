#include <map>

#include "UserAuthService.h"
#include "request/Reply.h"

namespace {

// Switch in the configuration -> the host's name of the module.
const std::map<std::string, std::wstring> kModules = {
    {"funcfg_contacts", L"Contacts"},
    {"funcfg_gallery", L"Gallery"},
    {"funcfg_notes", L"Notepad"},
    {"funcfg_find_my_phone_globe", L"FindDevice"},
    {"funcfg_recordings_up", L"Recorder"},
    {"funcfg_manage_storage", L"ManageSpace"},
    {"funcfg_drive", L"Drive"},
};

}  // namespace

// The name is the interface's: what it collects are the modules that are switched on.
void UserAuthService::InitInvalidModules(Json::Value& root) {
    m_vecValidModules.clear();
    const userauth::Reply params = userauth::Reply::Of(root).Member("params");
    for (const std::string& name : params.MemberNames()) {
        const auto module = kModules.find(name);
        if (module != kModules.end() && params.ConvertedText(name.c_str()) == "true") {
            m_vecValidModules.push_back(module->second);
        }
    }
}
