#include "platform/ExchangeLog.h"

#include <mutex>
#include <utility>

namespace host {

struct ExchangeLog::State {
    std::mutex mutex;
    std::vector<HttpExchange> exchanges;
};

ExchangeLog::ExchangeLog() : m_state(std::make_shared<State>()) {
    CurlHttpLibContext::SetExchangeObserver([state = m_state](const HttpExchange& exchange) {
        if (ExchangeLogPause::s_pauses != 0) {
            return;
        }
        const std::lock_guard<std::mutex> guard(state->mutex);
        state->exchanges.push_back(exchange);
    });
}

ExchangeLog::~ExchangeLog() {
    CurlHttpLibContext::SetExchangeObserver(nullptr);
}

std::vector<HttpExchange> ExchangeLog::Take() {
    const std::lock_guard<std::mutex> guard(m_state->mutex);
    return std::exchange(m_state->exchanges, {});
}

}  // namespace host
