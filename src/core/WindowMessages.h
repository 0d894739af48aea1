#pragma once

namespace userauth {

// Posts kPortraitChangedMessage, both parameters 0, to the host's main window; nothing when the host named none. Any
// thread.
void PostPortraitChanged();

// Messages that every module of the suite registers at load time. This library posts none of them.
struct SuiteWindowMessages {
    unsigned showWindow;
    unsigned isClosing;
    unsigned refreshPreferences;
    unsigned restore;
    unsigned accessTokenLost;
};

extern const SuiteWindowMessages g_suiteWindowMessages;

}  // namespace userauth
