#include "UserAuthService.h"
#include "request/Reply.h"

namespace {

constexpr std::int32_t kResultSuccess = 0;
constexpr std::int32_t kUserStatusActive = 1;

}  // namespace

// Takes the activation from a document of the basic service: "result" must be there and 0, "userStatus" an integer, 1
// for an active account. Otherwise the flag stays, so that no failed reply takes an activation back. Whether it was
// told.
bool UserAuthService::InitActiveAccount(Json::Value& root) {
    const userauth::Reply reply = userauth::Reply::Of(root);
    if (!reply.HasInteger("result") || reply.Integer("result") != kResultSuccess || !reply.HasInteger("userStatus")) {
        return false;
    }
    m_bActiveAccount = reply.Integer("userStatus") == kUserStatusActive;
    return true;
}
