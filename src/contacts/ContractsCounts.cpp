#include <Logger.h>

#include "UserAuthService.h"
#include "contacts/CountCards.h"
#include "core/ServiceLog.h"

namespace {

// Business event of the export: basic event, operation, action.
constexpr int kEventContactsExport[] = {148, 1, 0};

}  // namespace

void UserAuthService::ContractsCounts(std::string content) {
    const std::wstring count = std::to_wstring(userauth::CountCards(content));
    Logger::OutputOperationLog(kEventContactsExport[0], kEventContactsExport[1], kEventContactsExport[2],
                               {{L"num", count}});
    userauth::WriteSuiteLog(kSeverityProgress, __LINE__, "UserAuthService::ContractsCounts",
                            L"NIMBASUITE_CONTACT_EXPORT " + count);
}
