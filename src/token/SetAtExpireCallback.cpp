#include <utility>

#include "UserAuthService.h"

void UserAuthService::SetAtExpireCallback(const std::function<void()>& callback) {
    std::function<void()> copy(callback);
    m_atExpireCallback.swap(copy);
}
