#include "profile/SyncService.h"

#include "checks/BearerRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

PlatformReply About(const PlatformRequest&, const Account& account) {
    Json::Value reply(Json::objectValue);
    reply["user"]["userId"] = account.userId;
    return {200, JsonLine(reply), {}};
}

}  // namespace

void AddSyncEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("GET", kPathSync, BearerQuery(kSyncQuery, state, About));
}

}  // namespace sandbox
