#include <algorithm>
#include <iterator>

#include "UserAuthService.h"
#include "request/Reply.h"

namespace {

struct Module {
    const char* key;      // its switch in the configuration
    const wchar_t* name;  // as the host calls it
};
constexpr Module kModules[] = {
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
    std::vector<std::wstring> modules;
    const userauth::Reply params = userauth::Reply::Of(root).Member("params");
    for (const std::string& name : params.MemberNames()) {
        const auto* const module = std::find_if(std::begin(kModules), std::end(kModules),
                                                [&name](const Module& known) { return name == known.key; });
        if (module != std::end(kModules) && params.ConvertedText(name.c_str()) == "true") {
            modules.emplace_back(module->name);
        }
    }
    m_vecValidModules.swap(modules);
}
