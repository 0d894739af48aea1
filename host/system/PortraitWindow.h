#pragma once

#include <chrono>

struct HWND__;

namespace host {

// A message-only window that is the parameter store's main window while it lives, and so receives the service's
// portrait-changed message. The message waits in the queue of the thread that made the window.
class PortraitWindow {
public:
    // Throws HostError with kExitStepFailed.
    PortraitWindow();
    ~PortraitWindow();
    PortraitWindow(const PortraitWindow&) = delete;
    PortraitWindow& operator=(const PortraitWindow&) = delete;

    // Drops the messages that have come so far. To be called before a profile is requested.
    void Forget();

    // Waits until a portrait-changed message has come; false when the time ran out, or the person interrupts.
    bool WaitForMessage(std::chrono::milliseconds longest);

private:
    HWND__* m_window;
};

}  // namespace host
