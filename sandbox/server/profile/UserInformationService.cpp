#include "profile/UserInformationService.h"

#include "checks/BearerRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

// On the listener that was asked, so that a client that came by TLS stays with it.
std::string PhotoLink(const PlatformRequest& request, const Account& account) {
    return account.photoName.empty() ? std::string() : request.origin + std::string(kPathPhotos) + account.photoName;
}

PlatformReply Profile(const PlatformRequest& request, const Account& account) {
    Json::Value reply(Json::objectValue);
    reply["userId"] = account.userId;
    reply["displayName"] = account.displayName;
    reply["profilePhotoLink"] = PhotoLink(request, account);
    reply["accountBrand"] = account.brand;
    return {200, JsonLine(reply), {}};
}

}  // namespace

void AddUserInformationEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("GET", kPathUserInformation, BearerQuery(kUserInformationQuery, state, Profile));
}

}  // namespace sandbox
