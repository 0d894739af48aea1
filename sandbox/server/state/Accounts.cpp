#include "state/Accounts.h"

namespace sandbox {

// Names and a user id beyond ASCII, one name beyond the basic plane: a client that loses characters is found out. One
// account has no photo.
std::vector<Account> KnownAccounts() {
    return {
        {"260086000100000001", "\u0E2A\u0E21\u0E0A\u0E32\u0E22 \u0E43\u0E08\u0E14\u0E35", "CN", 7,
         "260086000100000001.png", true, "zh-cn", true, false},
        {"260086000100000002", "Zo\u00EB \u738B\u82B3", "DE", 3, "260086000100000002.jpg", false, "de-de", false, true},
        {"260086000100000003", "\u041D\u0430\u0434\u0435\u0436\u0434\u0430 \u0401\u043B\u043A\u0438\u043D\u0430", "RU",
         7, "260086000100000003.png", true, "ru-ru", false, true},
        {"260086000100000004", "Luna \U0001F319\U0001F98A", "US", 1, "", false, "en-us", true, true},
        {"\u017Elu\u0165ou\u010Dk\u00FD-\u5C0F\u6797-5", "\u5C0F\u6797 Ji\u0159\u00ED", "CZ", 2,
         "260086000100000005.png", true, "cs-cz", true, false},
    };
}

}  // namespace sandbox
