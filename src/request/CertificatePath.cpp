#include "request/CertificatePath.h"

#include "core/TextEncoding.h"

namespace userauth {

const std::string g_certificatePath;

std::wstring CertificatePath() {
    return MultiByteToWide(g_certificatePath, kAnsiCodePage);
}

}  // namespace userauth
