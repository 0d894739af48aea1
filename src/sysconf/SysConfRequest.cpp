#include "sysconf/SysConfRequest.h"

namespace userauth {

void AskForSysConf(BasicServiceRequest& request, const std::wstring& countryCode) {
    // Deliberately not escaped: the server compares the text, one blank after the colon. A country code with a quote in
    // it makes it refuse the request.
    request.body = L"{\"country\": \"" + countryCode + L"\"}";
    request.extraHeaders = {{L"x-zv-active-method", L"manual"}};
}

}  // namespace userauth
