#pragma once

#include <chrono>

struct HWND__;

namespace host {

// A message-only window that receives the service's portrait-changed message, as a client's main window does. Its
// messages are handled on the thread that created it, only while that thread waits here.
class PortraitWindow {
public:
    // Throws HostError with kExitStepFailed.
    PortraitWindow();
    ~PortraitWindow();
    PortraitWindow(const PortraitWindow&) = delete;
    PortraitWindow& operator=(const PortraitWindow&) = delete;

    HWND__* Handle() const { return m_window; }

    // Drops what has come so far; before a profile is requested.
    void Forget();

    // Handles messages until a portrait-changed message has come; false when the time ran out.
    bool WaitForMessage(std::chrono::milliseconds longest);

    // Called by the window's procedure.
    void OnPortraitChanged() { m_arrived = true; }

private:
    HWND__* m_window;
    bool m_arrived = false;
};

}  // namespace host
