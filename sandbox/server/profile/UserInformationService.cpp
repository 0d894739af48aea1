#include "checks/AuthorizedRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "profile/Endpoints.h"

namespace sandbox {
namespace {

// The link names the listener that was asked, so that a client that came by TLS stays with TLS.
std::string PhotoLink(const PlatformRequest& request, const Account& account) {
    return account.photoName.empty() ? std::string() : request.origin + std::string(kPathPhotos) + account.photoName;
}

PlatformReply Profile(const PlatformRequest& request, const Account& account) {
    return JsonReply(JsonObject({{"userId", account.userId},
                                 {"displayName", account.displayName},
                                 {"profilePhotoLink", PhotoLink(request, account)},
                                 {"accountBrand", account.brand}}));
}

PlatformReply DriveOwner(const PlatformRequest&, const Account& account) {
    return JsonReply(JsonObject({{"user", JsonObject({{"userId", account.userId}})}}));
}

}  // namespace

void AddUserInformationEndpoints(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("GET", kPathUserInformation, BearerQuery(kUserInformationQuery, state, Profile));
    endpoints.Add("GET", kPathSync, BearerQuery(kSyncQuery, state, DriveOwner));
}

}  // namespace sandbox
