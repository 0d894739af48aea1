#pragma once

#include <string>

#include "AccountSdkContract.h"

namespace accountsdk {

// The three texts of "SignIn".
struct SignInArguments {
    std::string applicationId;
    std::string scopes;
    std::string location;
};

// Whether a client with the given id may sign in with them: each must match byte for byte. kOk, kWrongApplicationId,
// kWrongScopes or kWrongLocation.
Code CheckSignInArguments(const SignInArguments& arguments, const std::string& clientId);

}  // namespace accountsdk
