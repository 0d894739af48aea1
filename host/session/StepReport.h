#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "platform/ExchangeLog.h"
#include "text/Table.h"

namespace host {

struct SessionState;

// What a step found out. Texts are UTF-8 and hold no secret.
struct StepResult {
    bool ok = false;
    std::string detail = {};                                       // one line; may be empty
    std::vector<std::pair<std::string, std::string>> fields = {};  // name in lower-case words, and value
    Table table = {};                                              // may be empty
    // For an operation that returns nothing: the step also fails unless its last exchange ended with 200 or 201.
    bool judgedByStatus = false;
};

// One step: a name for machines, a title for people, and what to do.
struct Step {
    const char* name;
    const char* title;
    StepResult (*run)(SessionState& state);
};

// What the line of a running step starts with.
constexpr char kRunning[] = "  ...     ";

// Whether a step has a line while it runs, which its outcome replaces. Only on a terminal without log lines.
bool ShowsRunningStep(const SessionState& state);

// Runs steps and shows each with its outcome, its time and the HTTP exchanges that it made: as lines for people or as
// one JSON object a line.
class StepReport {
public:
    // The state must outlive it.
    explicit StepReport(SessionState& state);

    // Whether it succeeded. An exception of the step counts as a failure and is thrown on: the program ends with it.
    bool Run(const Step& step);
    // Runs the steps in order, up to the first that fails or to Ctrl-C; whether all succeeded.
    bool RunAll(const std::vector<Step>& steps);

    // Writes the closing line for people, after the last step.
    void Conclude();

    bool AllSucceeded() const { return m_failed.empty(); }

private:
    using Clock = std::chrono::steady_clock;

    bool Finish(const Step& step, Clock::time_point start, StepResult result);
    std::string Paint(const char* colour, const std::string& text) const;

    SessionState& m_state;
    const bool m_showsRunning;
    ExchangeLog m_exchanges;
    int m_count = 0;
    Clock::duration m_time{};
    std::string m_failed;  // titles of the steps that failed
};

}  // namespace host
