#pragma once

#include <HttpLib.h>

#include <memory>
#include <vector>

namespace host {

// Collects the HTTP exchanges of the process while it lives, from every thread that has no ExchangeLogPause.
class ExchangeLog {
public:
    ExchangeLog();
    ~ExchangeLog();
    ExchangeLog(const ExchangeLog&) = delete;
    ExchangeLog& operator=(const ExchangeLog&) = delete;

    // Those since the last call, in the order of their end.
    std::vector<HttpExchange> Take();

private:
    struct State;
    std::shared_ptr<State> m_state;  // shared with the observer, which may still be running when this is destroyed
};

// While one lives, the exchanges of its thread are left out.
struct ExchangeLogPause {
    ExchangeLogPause() { ++s_pauses; }
    ~ExchangeLogPause() { --s_pauses; }
    ExchangeLogPause(const ExchangeLogPause&) = delete;
    ExchangeLogPause& operator=(const ExchangeLogPause&) = delete;

    static inline thread_local int s_pauses = 0;
};

}  // namespace host
