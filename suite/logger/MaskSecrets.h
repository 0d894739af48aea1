#pragma once

#include <string>
#include <string_view>

namespace suite {

// The text with every secret's value replaced by "***". A secret is known by its name, in any letter case:
//   token                names that end so: "access_token", "refreshToken", "id_token", "X-Refresh-Token"
//   authorization code   also "authCode", and "code" as a whole word before "=" or in quotes; up to five digits are a
//                        status and stay
//   authorization, cookie, set-cookie     without quotes the whole rest of the line
// and by what joins name and value:
//   name=v   name: v   name => v   name[0]=v   "name":"v"   "name","v"   {"name":"NAME","value":"v"}   <name>v</name>
// Bearer values need no name: "Bearer v" anywhere, on the next line too.
// Names and joints are found in any encoding that UnwrappedText takes off. Where the end of a value is in doubt more is
// masked rather than less. Linear in the text's length.
std::string MaskSecrets(std::string_view text);

// True for a name whose value is a secret by itself: "accessToken", "X-Refresh-Token", "Authorization", "token".
bool IsSecretName(std::string_view name);

}  // namespace suite
