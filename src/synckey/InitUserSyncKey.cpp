#include <EventAdminModule.h>
#include <json/value.h>

#include "UserSyncKeyService.h"
#include "core/JsonText.h"
#include "core/TextEncoding.h"
#include "core/WipeAtExit.h"
#include "request/Reply.h"
#include "synckey/KeyServiceRequest.h"
#include "synckey/TemporaryKey.h"
#include "synckey/WrapTempKey.h"

namespace {

using userauth::kUtf8CodePage;
using userauth::MultiByteToWide;

struct ServerKey {
    std::string publicKey;  // base64 text
    std::string version;
};

// False unless the server answered 200 with a JSON object or array.
bool RequestServerKey(ServerKey& key) {
    userauth::UserAuthRequest::HeaderMap headers = userauth::KeyServiceHeaders();
    headers[L"x-zv-tempKeyEncType"] = L"EC_256";
    userauth::WebRequestResult result;
    userauth::SendKeyServiceRequest(userauth::KeyServiceUrl(L"/publicKey"), headers, result);
    Json::Value root;
    if (result.nHttpCode != userauth::kHttpOk || !userauth::ParseJsonText(result.szResponse, root)) {
        return false;
    }
    const userauth::Reply reply = userauth::Reply::Of(root);
    key.publicKey = reply.ConvertedText("publicKey");
    key.version = reply.ConvertedText("version");
    return true;
}

}  // namespace

// Logs nothing of its own: its failures are visible in its result only.
bool UserSyncKeyService::InitUserSyncKey() try {
    if (IsSyncDriveKeyInited() && IsCloudPhotoKeyInited()) {
        return true;
    }
    ServerKey serverKey;
    if (!RequestServerKey(serverKey)) {
        return false;
    }
    std::vector<unsigned char> temporaryKey = userauth::DrawTemporaryKey();
    const userauth::WipeAtExit wipeKey(temporaryKey);
    const std::string token = userauth::WrapTempKey(serverKey.publicKey, temporaryKey);
    if (token.empty()) {
        return false;
    }
    const std::wstring wideToken = MultiByteToWide(token, kUtf8CodePage);
    const std::wstring version = MultiByteToWide(serverKey.version, kUtf8CodePage);

    // What the two lists answered is not looked at: each is tried, and whatever they stored counts.
    if (!IsSyncDriveKeyInited()) {
        getUserKeyList(wideToken, version, temporaryKey, kSyncDriveDataType);
    }
    if (!IsCloudPhotoKeyInited()) {
        getUserKeyList(wideToken, version, temporaryKey, kCloudPhotoDataType);
    }
    // A key that was there before the call is told of too.
    if (IsSyncDriveKeyInited()) {
        EventAdminModule::GetInstance()->SyncDriveKeyOk();
    }
    if (IsCloudPhotoKeyInited()) {
        EventAdminModule::GetInstance()->CloudPhotoKeyOk();
    }
    return IsSyncDriveKeyInited() && IsCloudPhotoKeyInited();
} catch (...) {
    return false;
}
