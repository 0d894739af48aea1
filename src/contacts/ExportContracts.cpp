#include <cstdint>
#include <filesystem>
#include <fstream>
#include <utility>

#include "UserAuthService.h"
#include "contacts/DownloadBuffer.h"
#include "core/ServiceLog.h"
#include "request/UserAuthRequest.h"

namespace {

constexpr char kTag[] = "UserAuthService::ExportContracts";

std::wstring CookieText(const std::map<std::wstring, std::wstring>& cookies) {
    std::wstring text;
    for (const auto& [name, value] : cookies) {
        text += name + L"=" + value + L";";
    }
    return text;
}

userauth::UserAuthRequest::HeaderMap Headers(const std::map<std::wstring, std::wstring>& cookies) {
    return {
        {L"Accept", L"application/json, text/plain, */*"},
        {L"Accept-Encoding", L"gzip, deflate, br"},
        {L"Accept-Language", L"zh-CN"},
        {L"Cache-Control", L"application/json, text/plain, */*"},  // the text of "Accept": kept as it is
        {L"ContentType", L"application/force-download"},           // without a hyphen: kept as it is
        {L"Content-Disposition", L"attachment; filename='contacts.vcf'"},
        {L"Cookie", CookieText(cookies)},
    };
}

// False when there is no memory, which ends the transfer: nothing may be thrown through the HTTP library.
bool Keep(userauth::DownloadBuffer& content, const char* data, std::size_t size) {
    try {
        content.Append(data, size);
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace

bool UserAuthService::ExportContracts(std::wstring url, std::wstring filePath,
                                      std::map<std::wstring, std::wstring> cookies) try {
    userauth::UserAuthRequest::HeaderMap headers = Headers(cookies);
    // Nobody checks whether the file can be written: the download runs for the count anyway, and its status alone
    // decides.
    std::ofstream file(std::filesystem::path(filePath), std::ios::binary | std::ios::trunc);
    userauth::DownloadBuffer content;
    std::int64_t total = 0;
    FileTransferHandler handler;
    handler.SetWriteDataFunc([&](const char* data, std::size_t& size, bool) {
        if (!Keep(content, data, size)) {
            return false;
        }
        file.write(data, static_cast<std::streamsize>(size));
        total += static_cast<std::int64_t>(size);
        file.seekp(static_cast<std::streamoff>(total));
        return true;
    });
    userauth::UserAuthRequest request;
    request.SetGetRequest(std::move(url), std::move(headers));
    if (request.SendDownRequest(&handler) != userauth::kHttpOk) {
        userauth::WriteLog(kSeverityFailure, __LINE__, kTag, L"Error: ExportContracts failed!");
        return false;
    }
    ContractsCounts(content.Take());
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"ExportContracts successed!");
    return true;
} catch (...) {
    return false;
}
