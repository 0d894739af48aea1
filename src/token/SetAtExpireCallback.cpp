#include <memory>

#include "UserAuthService.h"

// One copy of the host's callable, shared: a running callback stays alive when it registers another one, and what it
// keeps between calls is kept.
void UserAuthService::SetAtExpireCallback(const std::function<void()>& callback) try {
    std::function<void()> stored;
    if (callback) {
        stored = [shared = std::make_shared<std::function<void()>>(callback)] { (*shared)(); };
    }
    m_atExpireCallback.swap(stored);
} catch (...) {
    return;  // a callable that cannot be copied: the former one stays
}
