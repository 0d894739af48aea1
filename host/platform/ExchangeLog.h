#pragma once

#include <HttpLib.h>

#include <memory>
#include <vector>

namespace host {

// Collects the HTTP exchanges of all threads while it lives. A thread with an ExchangeLogPause is left out.
class ExchangeLog {
public:
    ExchangeLog();
    ~ExchangeLog();
    ExchangeLog(const ExchangeLog&) = delete;
    ExchangeLog& operator=(const ExchangeLog&) = delete;

    // Hands out the exchanges that ended since the last call, in the order of their ends.
    std::vector<HttpExchange> Take();

private:
    struct State;
    std::shared_ptr<State> m_state;  // shared with the observer, which may still be running when this is destroyed
};

// While one lives, the log leaves out the exchanges of its thread.
struct ExchangeLogPause {
    ExchangeLogPause() { ++s_pauses; }
    ~ExchangeLogPause() { --s_pauses; }
    ExchangeLogPause(const ExchangeLogPause&) = delete;
    ExchangeLogPause& operator=(const ExchangeLogPause&) = delete;

    static inline thread_local int s_pauses = 0;
};

}  // namespace host
