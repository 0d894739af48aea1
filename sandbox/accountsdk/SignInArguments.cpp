#include "SignInArguments.h"

namespace accountsdk {
namespace {

// The order counts, and every scope is followed by one blank, the last one too.
constexpr char kScopes[] =
    "https://www.example.com/auth/account/base.profile "
    "https://www.example.com/auth/account/devicelist "
    "https://www.example.com/auth/drive "
    "https://www.example.com/auth/cloudphoto "
    "openid "
    "https://www.example.com/auth/account/country "
    "https://www.example.com/auth/cloudbackup "
    "https://www.example.com/auth/drive/extension "
    "https://www.example.com/auth/clouddatasync "
    "https://www.example.com/auth/account/account.flags "
    "https://www.example.com/auth/account/realname/state ";

// Clients send no position. The text is not JSON, and is expected so.
constexpr char kLocation[] = R"({"LocationX":,"LocationY":})";

}  // namespace

Code CheckSignInArguments(const SignInArguments& arguments, const std::string& clientId) {
    if (arguments.applicationId != clientId) {
        return kWrongApplicationId;
    }
    if (arguments.scopes != kScopes) {
        return kWrongScopes;
    }
    return arguments.location == kLocation ? kOk : kWrongLocation;
}

}  // namespace accountsdk
