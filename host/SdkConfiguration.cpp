#include "SdkConfiguration.h"

#include <json/writer.h>

#include <fstream>
#include <iterator>

#include "ExitCode.h"
#include "JsonObject.h"
#include "SystemError.h"
#include "TextEncoding.h"

namespace host {
namespace {

// The client's application id at the account platform.
constexpr char kClientId[] = "104862915";

constexpr wchar_t kMutexName[] = L"Local\\UserAuthHostSdkConfiguration";
constexpr DWORD kLongestTurnMilliseconds = 30000;
constexpr int kRenameAttempts = 20;
constexpr DWORD kRenamePauseMilliseconds = 50;

std::optional<std::string> ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    return std::string((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
}

// Somebody else may have the old file open for a moment: the SDK of another program, or a virus scanner.
bool Replace(const std::filesystem::path& fresh, const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::rename(fresh, file, error);
    for (int attempt = 1; error && attempt < kRenameAttempts; ++attempt) {
        Sleep(kRenamePauseMilliseconds);
        std::filesystem::rename(fresh, file, error);
    }
    return !error;
}

// By way of a second file: a reader at the same moment sees the old text or the new one.
bool WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::path fresh = file;
    fresh += "." + std::to_string(GetCurrentProcessId()) + ".new";
    std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    const bool replaced = stream && Replace(fresh, file);
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
    if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED) {
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
    std::error_code ignored;
    if (m_changed && m_before) {
        WriteFile(m_file, *m_before);
    } else if (m_changed) {
        std::filesystem::remove(m_file, ignored);
    }
}

}  // namespace host
