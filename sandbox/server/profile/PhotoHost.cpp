#include "profile/PhotoHost.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "profile/Photos.h"

namespace sandbox {
namespace {

// A host of its own in real life: what a client tells the account platform about itself must not reach it.
std::string RequestFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    return inspection.Reason();
}

EndpointHandler PhotoEndpoint(Photo photo) {
    return [photo = std::move(photo)](const PlatformRequest& request) {
        const auto fault = RequestFault(request);
        return fault.empty() ? PlatformReply{200, photo.bytes, {}, photo.contentType} : ErrorReply(400, fault);
    };
}

}  // namespace

void AddPhotoEndpoints(EndpointTable& endpoints, const PlatformState& state) {
    std::size_t number = 0;
    for (const auto& account : state.Accounts()) {
        ++number;
        if (!account.photoName.empty()) {
            endpoints.Add("GET", std::string(kPathPhotos) + account.photoName,
                          PhotoEndpoint(MakePhoto(account.photoName, number)));
        }
    }
}

}  // namespace sandbox
