#include "UserAuthService.h"
#include "request/Reply.h"

void UserAuthService::InitPcAvailable(Json::Value& root) {
    m_bAvailableCountry = userauth::Reply::Of(root).Member("params").ConvertedText("funcfg_pc_available") == "true";
}
