#include "SyncService.h"

#include "BearerQuery.h"
#include "JsonText.h"
#include "WireConstants.h"

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
