#include "platform/SdkConfiguration.h"

#include <json/writer.h>

#include <fstream>
#include <iterator>
#include <utility>

#include "system/HostError.h"
#include "system/RenameOver.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// The client's application id at the account platform.
constexpr char kClientId[] = "104862915";

constexpr wchar_t kMutexName[] = L"Local\\UserAuthHostSdkConfiguration";
constexpr DWORD kLongestTurnMilliseconds = 30000;

// Nothing when there is no file. Throws when there is one that cannot be read, which must not be taken for absent: it
// would be lost.
std::optional<std::string> ReadFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error) && !error) {
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream.is_open() || stream.bad()) {
        throw HostError(kExitStepFailed, "cannot read " + ToUtf8(file.wstring()));
    }
    return text;
}

// By way of a second file: a reader at the same moment sees the old text or the new one.
bool WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::path fresh = file;
    fresh += "." + std::to_string(GetCurrentProcessId()) + ".new";
    std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    const bool replaced = stream && RenameOver(fresh, file);
    if (!replaced) {
        std::error_code ignored;
        std::filesystem::remove(fresh, ignored);
    }
    return replaced;
}

}  // namespace

SdkConfiguration::Turn::Turn() : m_mutex(CreateMutexW(nullptr, FALSE, kMutexName)) {
    if (!m_mutex) {
        FailWithSystemError("cannot take turns at the account SDK's configuration", GetLastError());
    }
    const DWORD waited = WaitForSingleObject(m_mutex.get(), kLongestTurnMilliseconds);
    if (waited == WAIT_FAILED) {
        FailWithSystemError("cannot wait for the account SDK's configuration", GetLastError());
    }
    if (waited == WAIT_TIMEOUT) {
        throw HostError(kExitStepFailed, "another userauth keeps the account SDK's configuration for over 30 s");
    }
}

SdkConfiguration::Turn::~Turn() {
    ReleaseMutex(m_mutex.get());
}

SdkConfiguration::SdkConfiguration(std::filesystem::path file, const std::string& platformUrl)
    : m_file(std::move(file)), m_before(ReadFile(m_file)) {
    const std::optional<Json::Value> before = m_before ? ParseJsonObject(*m_before) : Json::Value(Json::objectValue);
    if (!before) {
        throw HostError(kExitUsage, ToUtf8(m_file.wstring()) + ": not a JSON object: repair or delete it");
    }
    Json::Value root = *before;
    root["platform_url"] = platformUrl;
    if (!root.isMember("client_id")) {
        root["client_id"] = kClientId;
    }
    m_changed = root != *before;
    if (m_changed && !WriteFile(m_file, Json::writeString(Json::StreamWriterBuilder(), root) + "\n")) {
        throw HostError(kExitStepFailed, "cannot write " + ToUtf8(m_file.wstring()) + ": is its folder writable?");
    }
}

SdkConfiguration::~SdkConfiguration() {
    try {
        Restore();
    } catch (const std::exception&) {  // no memory: the file keeps our URL, as after a program that was killed
    }
}

bool SdkConfiguration::Restore() {
    if (!std::exchange(m_changed, false)) {
        return true;
    }
    std::error_code error;
    return m_before ? WriteFile(m_file, *m_before) : std::filesystem::remove(m_file, error);
}

}  // namespace host
