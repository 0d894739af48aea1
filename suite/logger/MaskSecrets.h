#pragma once

#include <string>
#include <string_view>

namespace suite {

// The text with every secret's value replaced by "***". Secrets, in any letter case:
//   access token, refresh token  "access_token=v", "accessToken: v", "\"refreshToken\":\"v\"" and JSON inside JSON text
//   authorization code           as above
//   authorization                as above; without quotes the whole rest of the line
//   token                        as the quoted name of a member only
//   bearer values                "Bearer v" anywhere
// Names and separators are found percent-encoded and as \u escapes too.
// Where the end of a value is in doubt more is masked rather than less. Linear in the text's length.
std::string MaskSecrets(std::string_view text);

// True for a name whose value is a secret by itself: "accessToken", "X-Refresh-Token", "Authorization", "token".
bool IsSecretName(std::string_view name);

}  // namespace suite
