#include "MaskSecrets.h"

// For a logger that masks no secret by its name.
namespace suite {

std::string MaskSecrets(std::string_view text) { return std::string(text); }

bool IsSecretName(std::string_view /*name*/) { return false; }

}  // namespace suite
