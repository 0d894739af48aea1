#include "session/StepReport.h"

#include <Logger.h>
#include <json/value.h>
#include <json/writer.h>

#include <algorithm>

#include "session/SessionState.h"
#include "system/Interruption.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr std::size_t kTitleWidth = 38;
constexpr std::size_t kTimeWidth = 12;
constexpr std::size_t kFieldIndent = 12;
constexpr std::size_t kFieldWidth = 22;
constexpr int kHttpOk = 200;
constexpr int kHttpCreated = 201;
constexpr char kGreen[] = "\x1b[32m";
constexpr char kRed[] = "\x1b[31m";
constexpr char kPlain[] = "\x1b[0m";
constexpr int kLongestFlushMilliseconds = 1000;

std::string Padded(std::string text, std::size_t width) {
    text.resize(text.size() < width ? width : text.size(), ' ');
    return text;
}

std::string ExchangeText(const HttpExchange& exchange) {
    if (exchange.code < 0) {
        return "no HTTP reply (" + std::to_string(exchange.code) + ")";
    }
    const char* const connection = exchange.connectionReused ? ", reused connection" : ", new connection";
    return "HTTP " + std::to_string(exchange.code) + connection;
}

// "HTTP 200, new connection; 2 x HTTP 200, reused connection; ": equal ones in a row are told once.
std::string ExchangeTexts(const std::vector<HttpExchange>& exchanges) {
    std::string texts;
    for (std::size_t first = 0, next = 0; first < exchanges.size(); first = next) {
        const std::string text = ExchangeText(exchanges[first]);
        for (next = first + 1; next < exchanges.size() && ExchangeText(exchanges[next]) == text;) {
            ++next;
        }
        const std::size_t times = next - first;
        texts += (times == 1 ? "" : std::to_string(times) + " x ") + text + "; ";
    }
    return texts;
}

// "access token" to "accessToken".
std::string MachineName(std::string name) {
    for (std::size_t space = name.find(' '); space != std::string::npos; space = name.find(' ')) {
        name.erase(space, 1);
        const bool lower = name[space] >= 'a' && name[space] <= 'z';
        name[space] = static_cast<char>(name[space] - (lower ? 'a' - 'A' : 0));
    }
    return name;
}

Json::Value ExchangeJson(const HttpExchange& exchange) {
    Json::Value json;
    json["method"] = ToUtf8(exchange.method);
    json["url"] = ToUtf8(exchange.url);
    json["code"] = exchange.code;
    json["milliseconds"] = exchange.milliseconds;
    json["connectionReused"] = exchange.connectionReused;
    return json;
}

Json::Value RowsJson(const Table& table) {
    Json::Value rows(Json::arrayValue);
    for (const std::vector<std::string>& row : table.rows) {
        Json::Value json(Json::objectValue);
        for (std::size_t column = 0; column < row.size(); ++column) {
            json[MachineName(table.columns[column])] = WellFormed(row[column]);
        }
        rows.append(json);
    }
    return rows;
}

bool EndedWell(const std::vector<HttpExchange>& exchanges) {
    return !exchanges.empty() && (exchanges.back().code == kHttpOk || exchanges.back().code == kHttpCreated);
}

// What a finished step shows.
struct Outcome {
    const Step& step;
    StepResult result;
    std::chrono::duration<double, std::milli> time;
    std::vector<HttpExchange> exchanges;
};

// verdict: what the line starts with. width: of the terminal, 0 without one.
std::string TextLines(const Outcome& outcome, const std::string& verdict, std::size_t width) {
    const std::string time = Milliseconds(outcome.time);
    std::string line = Padded(outcome.step.title, kTitleWidth);
    line += Padded("", kTimeWidth - std::min(kTimeWidth, time.size())) + time + "  ";
    line += ExchangeTexts(outcome.exchanges) + Printable(outcome.result.detail);
    line.erase(line.find_last_not_of("; ") + 1);
    // With the colours' characters: Wine's console gives each of them a column.
    line = verdict + Wrapped(line, verdict.size(), kFieldIndent, width);
    constexpr std::size_t kValueIndent = kFieldIndent + kFieldWidth;
    for (const auto& [name, value] : outcome.result.fields) {
        line += "\n" + std::string(kFieldIndent, ' ') + Padded(name, kFieldWidth) +
                Wrapped(Printable(value), kValueIndent, kValueIndent, width);
    }
    return line + TableText(outcome.result.table, kFieldIndent, width) + "\n";
}

std::string JsonLine(const Outcome& outcome) {
    Json::Value json;
    json["step"] = outcome.step.name;
    json["title"] = outcome.step.title;
    json["ok"] = outcome.result.ok;
    json["detail"] = WellFormed(outcome.result.detail);
    json["milliseconds"] = outcome.time.count();
    json["exchanges"] = Json::Value(Json::arrayValue);
    for (const HttpExchange& exchange : outcome.exchanges) {
        json["exchanges"].append(ExchangeJson(exchange));
    }
    json["fields"] = Json::Value(Json::objectValue);
    for (const auto& [name, value] : outcome.result.fields) {
        json["fields"][MachineName(name)] = WellFormed(value);
    }
    if (!outcome.result.table.columns.empty()) {
        json["rows"] = RowsJson(outcome.result.table);
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    builder["precision"] = 3;
    builder["precisionType"] = "decimal";
    return Json::writeString(builder, json) + "\n";
}

}  // namespace

bool ShowsRunningStep(const SessionState& state) {
    return state.console.IsTerminal() && !state.options.json && !state.options.verbose;
}

StepReport::StepReport(SessionState& state) : m_state(state), m_showsRunning(ShowsRunningStep(state)) {}

bool StepReport::Run(const Step& step) {
    if (m_showsRunning) {
        m_state.console.Write(std::string(kRunning) + step.title);
    }
    m_exchanges.Take();  // an exchange that ended between two steps belongs to neither
    const Clock::time_point start = Clock::now();
    StepResult result;
    try {
        result = step.run(m_state);
    } catch (const std::exception& error) {
        // On a terminal the program's last line has the same text.
        const bool shown = m_state.console.IsTerminal() && !m_state.options.json;
        Finish(step, start, {false, shown ? "" : error.what()});
        throw;
    }
    return Finish(step, start, std::move(result));
}

bool StepReport::Finish(const Step& step, Clock::time_point start, StepResult result) {
    const Clock::duration time = Clock::now() - start;
    Outcome outcome{step, std::move(result), time, m_exchanges.Take()};
    const bool ok = outcome.result.ok && (!outcome.result.judgedByStatus || EndedWell(outcome.exchanges));
    outcome.result.ok = ok;

    ++m_count;
    m_time += time;
    if (!ok) {
        m_failed += (m_failed.empty() ? "" : ", ") + std::string(step.title);
    }
    if (m_state.options.verbose) {
        Logger::Flush(kLongestFlushMilliseconds);  // the step's log lines come before its own
    }
    const std::string verdict = ok ? Paint(kGreen, "  ok      ") : Paint(kRed, "  FAILED  ");
    m_state.console.Write(m_state.options.json ? JsonLine(outcome)
                                               : TextLines(outcome, (m_showsRunning ? kRewriteLine : "") + verdict,
                                                           m_state.console.Width()));
    return ok;
}

bool StepReport::RunAll(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        if (Interrupted() || !Run(step)) {
            return false;
        }
    }
    return true;
}

void StepReport::Conclude() {
    if (m_state.options.json || m_count == 0) {
        return;
    }
    const std::string verdict = AllSucceeded() ? Paint(kGreen, "all succeeded") + ", " + Milliseconds(m_time)
                                               : Paint(kRed, "failed") + ": " + m_failed;
    m_state.console.Write("\n" + std::to_string(m_count) + (m_count == 1 ? " step, " : " steps, ") + verdict + "\n");
}

std::string StepReport::Paint(const char* colour, const std::string& text) const {
    return m_state.console.HasColour() ? colour + text + kPlain : text;
}

}  // namespace host
