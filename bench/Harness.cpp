#include "Harness.h"

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace bench {
namespace {

constexpr double kSliceSeconds = 0.0004;
constexpr int kSlicesOfRound = 15;
constexpr int kCallsOfRound = 100;

double Quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(std::lround(part * static_cast<double>(values.size() - 1)))];
}
double Median(const std::vector<double>& values) {
    return Quantile(values, 0.5);
}
double HalfQuartiles(const std::vector<double>& values) {
    return (Quantile(values, 0.75) - Quantile(values, 0.25)) / 2;
}

// So many calls that one slice is short but well above the clock's own cost.
template <typename Slice>
std::size_t CallsOfSlice(const Slice& slice) {
    std::size_t calls = 1;
    while (SecondsOf([&] { slice(calls); }) < kSliceSeconds && calls < (std::size_t{1} << 24)) {
        calls *= 2;
    }
    return calls;
}

std::string Printed(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

std::string Printed(double value, const std::string& unit) {
    if (unit != "s") {
        return Printed(value, value < 10 ? 2 : 0) + " " + unit;
    }
    const struct {
        double below, factor;
        const char* name;
    } units[] = {{1e-6, 1e9, " ns"}, {1e-3, 1e6, " us"}, {1, 1e3, " ms"}, {1e30, 1, " s"}};
    const auto* const found = std::find_if(std::begin(units), std::end(units) - 1,
                                           [value](const auto& candidate) { return value < candidate.below; });
    const double scaled = value * found->factor;
    return Printed(scaled, scaled < 10 ? 2 : scaled < 100 ? 1 : 0) + found->name;
}

}  // namespace

void Report::Sliced(const std::string& what, Target target, const Slice& ours, const Slice& reference, double factor) {
    if (!Wants(what)) {
        return;
    }
    const Slice* const sides[] = {&ours, &reference};
    const std::size_t calls[] = {CallsOfSlice(ours), CallsOfSlice(reference)};
    const double items[] = {factor, 1};
    std::vector<double> medians[2];
    std::vector<double> ratios;
    for (int round = 0; round < m_rounds; ++round) {
        std::vector<double> times[2];
        for (int slice = 0; slice < 2 * kSlicesOfRound; ++slice) {
            const int side = slice % 2;
            const double seconds = SecondsOf([&] { (*sides[side])(calls[side]); });
            times[side].push_back(seconds / static_cast<double>(calls[side]) / items[side]);
        }
        ratios.push_back(Median(times[0]) / Median(times[1]));
        medians[0].push_back(Median(times[0]));
        medians[1].push_back(Median(times[1]));
    }
    Add({what, "s", Median(medians[0]), Median(medians[1]), Median(ratios), HalfQuartiles(ratios), {}, target});
}

void Report::Calls(const std::string& what, Target target, const Work& ours, const Work& reference) {
    if (!Wants(what)) {
        return;
    }
    const Work* const sides[] = {&ours, &reference};
    for (int call = 0; call < 20; ++call) {
        (*sides[call % 2])();  // connections, caches
    }
    std::vector<double> all[2];
    std::vector<double> ratios;
    for (int round = 0; round < m_rounds; ++round) {
        std::vector<double> times[2];
        for (int call = 0; call < 2 * kCallsOfRound; ++call) {
            times[call % 2].push_back(SecondsOf(*sides[call % 2]));
        }
        ratios.push_back(Median(times[0]) / Median(times[1]));
        for (int side = 0; side < 2; ++side) {
            all[side].insert(all[side].end(), times[side].begin(), times[side].end());
        }
    }
    const double p10 = Quantile(all[0], 0.1) / Quantile(all[1], 0.1);
    Add({what, "s", Median(all[0]), Median(all[1]), Median(ratios), HalfQuartiles(ratios), p10, target});
}

void Report::Timed(const std::string& what, Target target, const Measured& ours, const Measured& reference,
                   bool throughput) {
    if (!Wants(what)) {
        return;
    }
    std::vector<double> times[2];
    std::vector<double> ratios;
    for (int round = 0; round < m_rounds; ++round) {
        times[0].push_back(ours());
        times[1].push_back(reference());
        const double ratio = times[0].back() / times[1].back();
        ratios.push_back(throughput ? 1 / ratio : ratio);
    }
    Add({what, "s", Median(times[0]), Median(times[1]), Median(ratios), HalfQuartiles(ratios), {}, target});
}

void Report::Figure(const std::string& what, Target target, const std::string& unit, double ours,
                    std::optional<double> reference) {
    if (!Wants(what)) {
        return;
    }
    Add({what, unit, ours, reference, reference && *reference != 0 ? ours / *reference : ours, 0, {}, target});
}

void Report::Add(Row row) {
    std::fprintf(stderr, "%s\n", TableLine(row).c_str());
    m_rows.push_back(std::move(row));
}

std::string Report::Verdict(const Row& row) {
    if (row.target.side == Target::Side::kNone) {
        return "";
    }
    const double beyond =
        row.target.side == Target::Side::kAtMost ? row.ratio - row.target.limit : row.target.limit - row.ratio;
    return beyond <= 0 ? "met" : beyond <= row.spread ? "within spread" : "MISSED";
}

std::string Report::TableLine(const Row& row) {
    const char* const signs[] = {"", "<= ", ">= "};
    std::string target = signs[static_cast<int>(row.target.side)];
    target += row.target.side == Target::Side::kNone ? "" : Printed(row.target.limit, 2);
    return "| " + row.what + " | " + Printed(row.ours, row.unit) + " | " +
           (row.reference ? Printed(*row.reference, row.unit) : "") + " | " +
           (row.reference ? Printed(row.ratio, 2) : "") + (row.p10 ? " (p10 " + Printed(*row.p10, 2) + ")" : "") +
           " | " + (row.spread > 0 ? Printed(row.spread, 2) : "") + " | " + target + " | " + Verdict(row) + " |";
}

bool Report::Finish(const std::string& jsonFile) const {
    std::printf(
        "| what | ours | reference | ratio | spread | target | |\n| --- | --- | --- | --- | --- | --- | --- |\n");
    Json::Value rows(Json::arrayValue);
    bool good = true;
    for (const Row& row : m_rows) {
        std::printf("%s\n", TableLine(row).c_str());
        Json::Value& entry = rows.append(Json::Value(Json::objectValue));
        entry["what"] = row.what;
        entry["unit"] = row.unit;
        entry["ours"] = row.ours;
        entry["reference"] = row.reference ? Json::Value(*row.reference) : Json::Value();
        entry["ratio"] = row.ratio;
        entry["spread"] = row.spread;
        entry["p10"] = row.p10 ? Json::Value(*row.p10) : Json::Value();
        entry["target"] = row.target.side == Target::Side::kNone ? Json::Value() : Json::Value(row.target.limit);
        entry["verdict"] = Verdict(row);
        good = good && Verdict(row) != "MISSED";
    }
    if (!jsonFile.empty()) {
        std::ofstream(jsonFile, std::ios::binary) << rows.toStyledString();
    }
    return good;
}

}  // namespace bench
