#include "SignInArguments.h"

#include "../SignInContract.h"

namespace accountsdk {
Code CheckSignInArguments(const SignInArguments& arguments, const std::string& clientId) {
    if (arguments.applicationId != clientId) {
        return kWrongApplicationId;
    }
    if (arguments.scopes != sandbox::kSignInScopes) {
        return kWrongScopes;
    }
    return arguments.location == sandbox::kSignInLocation ? kOk : kWrongLocation;
}

}  // namespace accountsdk
