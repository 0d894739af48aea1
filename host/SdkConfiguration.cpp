#include "SdkConfiguration.h"

#include <json/writer.h>

#include <fstream>
#include <iterator>

#include "ExitCode.h"
#include "JsonObject.h"
#include "TextEncoding.h"

namespace host {
namespace {

// The client's application id at the account platform.
constexpr char kClientId[] = "104862915";

Json::Value ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return Json::Value(Json::objectValue);
    }
    const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    const std::optional<Json::Value> root = ParseJsonObject(text);
    if (!root) {
        throw HostError(kExitUsage, ToUtf8(file.wstring()) + ": not a JSON object: repair or delete it");
    }
    return *root;
}

// By way of a second file: a reader at the same moment sees the old text or the new one.
void WriteFile(const std::filesystem::path& file, const Json::Value& root) {
    std::filesystem::path fresh = file;
    fresh += ".new";
    std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
    stream << Json::writeString(Json::StreamWriterBuilder(), root) << "\n";
    stream.close();
    std::error_code error;
    if (stream) {
        std::filesystem::rename(fresh, file, error);
    }
    if (!stream || error) {
        throw HostError(kExitStepFailed, "cannot write " + ToUtf8(file.wstring()) + ": is its folder writable?");
    }
}

}  // namespace

void ConfigureAccountSdk(const std::filesystem::path& file, const std::string& platformUrl) {
    const Json::Value before = ReadFile(file);
    Json::Value root = before;
    root["platform_url"] = platformUrl;
    if (!root.isMember("client_id")) {
        root["client_id"] = kClientId;
    }
    if (root != before || !std::filesystem::exists(file)) {
        WriteFile(file, root);
    }
}

}  // namespace host
