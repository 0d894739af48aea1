#include <json/value.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "UserAuthService.h"
#include "core/DeploymentConstants.h"
#include "core/JsonText.h"
#include "core/Modules.h"
#include "core/TextEncoding.h"

namespace {

bool ReadFile(const std::filesystem::path& path, std::string& text) {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) {
        return false;
    }
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    return true;
}

// The writer ends a name at its first zero byte, so that two names may come out as one, whose last value counts.
void RemoveMembersWrittenAs(std::string_view name, Json::Value& object) {
    for (const std::string& member : object.getMemberNames()) {
        if (member.c_str() == name) {
            object.removeMember(member.data(), member.data() + member.size(), nullptr);
        }
    }
}

}  // namespace

void UserAuthService::UpdateAppIdConfig() try {
    const std::filesystem::path path = userauth::GetCurrentModuleDirectory() + L"ZMSCoreConfig.json";
    std::string text;
    Json::Value root;
    if (!ReadFile(path, text) || !userauth::ParseDocument(text, root) || !(root.isObject() || root.isNull())) {
        return;
    }
    RemoveMembersWrittenAs("client_id", root);
    root["client_id"] = userauth::WideToMultiByte(userauth::kApplicationId, userauth::kUtf8CodePage);
    const std::string document = userauth::WriteStyledDocument(root);
    // With a buffer of its own, because the stream would take one after the file has been emptied.
    char buffer[4096];
    std::ofstream file;
    file.rdbuf()->pubsetbuf(buffer, sizeof(buffer));
    file.open(path, std::ios::binary | std::ios::trunc);
    file << document;
} catch (...) {
    return;  // nothing is reported; what throws does so before the file is opened for writing
}
