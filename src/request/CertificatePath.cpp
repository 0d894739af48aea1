#include "request/CertificatePath.h"

#include "core/TextEncoding.h"

namespace userauth {

namespace {

// In the system's ANSI code page; no operation assigns it.
const std::string g_certificatePath;

}  // namespace

std::wstring CertificatePath() {
    return MultiByteToWide(g_certificatePath, kAnsiCodePage);
}

}  // namespace userauth
