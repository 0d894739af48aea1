#include <json/value.h>

#include "UserAuthService.h"
#include "core/JsonText.h"
#include "sysconf/BasicServiceRequest.h"

bool UserAuthService::InitSysConf() try {
    std::string reply;
    if (!userauth::IsBasicServiceSuccess(GetSysConfigInfo(reply))) {
        return false;
    }
    Json::Value root;
    if (!userauth::ParseDocument(reply, root)) {
        return false;
    }
    InitPcAvailable(root);
    InitActiveAccount(root);
    InitInvalidModules(root);
    return true;
} catch (...) {
    return false;
}
