#include <json/value.h>

#include "UserSyncKeyService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "core/WipeAtExit.h"
#include "request/Reply.h"
#include "synckey/KeyServiceRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserSyncKeyService::getUserKeyList";

void RequestKeyList(const std::wstring& keyExchangeToken, const std::wstring& keyVersion, const std::wstring& dataType,
                    userauth::WebRequestResult& result) {
    userauth::UserAuthRequest::HeaderMap headers = userauth::KeyServiceHeaders();
    headers[L"x-zv-clientTrustMode"] = L"1";
    headers[L"x-zv-keyEncType"] = L"AES_128";
    headers[L"x-zv-tempKeyEncType"] = L"ECDH";
    headers[L"x-zv-keyVersion"] = keyVersion;
    headers[L"x-zv-tempKey"] = keyExchangeToken;
    userauth::SendKeyServiceRequest(userauth::KeyServiceUrl(L"?dataType=" + dataType), headers, result);
}

}  // namespace

bool UserSyncKeyService::getUserKeyList(const std::wstring& keyExchangeToken, std::wstring keyVersion,
                                        std::vector<unsigned char> tempKey, const std::wstring& dataType) try {
    const userauth::WipeAtExit wipeKey(tempKey);
    userauth::WebRequestResult result;
    RequestKeyList(keyExchangeToken, keyVersion, dataType, result);
    if (result.nHttpCode != userauth::kHttpOk) {
        WriteLog(kSeverityFailure, __LINE__, kTag, L"get Keylist fail!");
        return false;
    }
    Json::Value root;
    if (!userauth::ParseJsonText(result.szResponse, root)) {
        WriteLog(kSeverityFailure, __LINE__, kTag, L"convert jsoncontent fail!");
        return false;
    }
    if (!root.isObject() || !root["keys"].isArray()) {
        return false;
    }
    for (const userauth::Reply& entry : userauth::Reply::Of(root).Elements("keys")) {
        for (const int keyType : {kKeyType1, kKeyType3}) {
            // Equality as the JSON library has it: "1" and 1.0 are not 1.
            if (entry.Equals("keyType", keyType) &&
                !encodeUserKey(entry.ConvertedText("encryptedKey"), entry.ConvertedText("keySHA256"),
                               entry.ConvertedText("keyUuid"), keyType, tempKey, dataType)) {
                return false;  // what earlier entries stored stays
            }
        }
    }
    return true;
} catch (...) {
    return false;
}
