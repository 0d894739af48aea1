#pragma once

#include <ParamStore.h>

#include <stdexcept>
#include <string>

#include "LoopbackServer.h"

namespace bench {

// The replies of the platform's operations that are measured, the look-up of the user's id after a pause.
inline void AnswerAsPlatform(LoopbackServer& server, unsigned pauseMilliseconds = 0) {
    server.Answer("/gw", {R"({"uid":"2850086000000000001","open_id":"MDFA1234567890","expire_in":3600,"scope":"all"})",
                          "Content-Type: application/json\r\n", 1, pauseMilliseconds});
    server.Answer(
        "/pcclient/getAccessTokenByCode",
        {R"({"accessToken":"DQEBAPnlqMWQWZ9yLXRoZS1iZW5jaC1hY2Nlc3MtdG9rZW4tMTIzNDU2Nzg5MGFiY2RlZmdoaWprbG1u",)"
         R"("refreshToken":"DAEBANvlq9yLXRoZS1iZW5jaC1yZWZyZXNoLXRva2VuLTEyMzQ1Njc4OTBhYmNkZWZnaGlqa2xtbm9wcXI=",)"
         R"("registerCountryCode":"DE","expires":3600,"oauthHttpStatusCode":200,"oauthSubErrorCode":0,)"
         R"("result":{"code":"0","desc":"success"}})",
         "Content-Type: application/json\r\n"});
}

inline void UsePlatform(const std::string& origin) {
    std::string error;
    if (!GlobalParamWrapper::GetInstance()->LoadConfigurationText(
            R"({"portalUrl":")" + origin + R"(","gatewayUrl":")" + origin + R"(/gw"})", error)) {
        throw std::runtime_error(error);
    }
}

// Throws when an operation that must succeed fails: a failure would be measured as something fast.
inline void Require(bool succeeded, const char* what) {
    if (!succeeded) {
        throw std::runtime_error(std::string(what) + " failed");
    }
}

}  // namespace bench
