#pragma once

namespace userauth {

// Posts message 0x0C87, both parameters 0, to the host's main window; nothing when the host named none. Any thread.
void PostPortraitChanged();

}  // namespace userauth
