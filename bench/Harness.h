#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// Keeps the compiler from dropping a result that nobody reads.
inline void Keep(const void* result) {
    [[maybe_unused]] static const void* volatile sink;
    sink = result;
    sink = nullptr;  // and holds no address of a frame that is gone
}

template <typename Work>
double SecondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// What a ratio must be at most (costs) or at least (throughput). Without one the row only informs.
struct Target {
    enum class Side { kNone, kAtMost, kAtLeast };
    Side side = Side::kNone;
    double limit = 0;
};
inline Target AtMost(double limit) {
    return {Target::Side::kAtMost, limit};
}
inline Target AtLeast(double limit) {
    return {Target::Side::kAtLeast, limit};
}

// Rows of the table: both sides of a comparison run in turns, so that whatever else the machine does meets both
// alike. A round takes the median of each side; the row takes the median of the rounds' ratios. Its spread is half the
// distance between their quartiles. A row is missed when its ratio is beyond its target by more than its spread.
class Report {
public:
    // filter: rows whose name holds it, whatever its letter case; empty: all. rounds: at least nine for a claim.
    Report(std::string filter, int rounds) : m_filter(std::move(filter)), m_rounds(rounds) {}

    bool Wants(const std::string& what) const;
    // Whether the filter is this row's name.
    bool IsNamed(const std::string& what) const { return m_filter == what; }

    // CPU work in short slices of many calls. Each side returns something to keep.
    template <typename Ours, typename Reference>
    void Cpu(const std::string& what, Target target, Ours ours, Reference reference) {
        Sliced(what, target, Repeated(ours), Repeated(reference), 1);
    }

    // How costs grow: the large work has `factor` times as many items as the small one; the ratio is that of the costs
    // of one item, 1 when they are linear.
    template <typename Large, typename Small>
    void Growth(const std::string& what, double factor, Large large, Small small) {
        Sliced(what, AtMost(kLinear), Repeated(large), Repeated(small), factor);
    }

    using Work = std::function<void()>;
    // Single calls of some tens of microseconds or more, such as requests.
    void Calls(const std::string& what, Target target, const Work& ours, const Work& reference);

    // Sides that measure themselves, in seconds; once each a round. throughput: the ratio is turned round.
    using Measured = std::function<double()>;
    void Timed(const std::string& what, Target target, const Measured& ours, const Measured& reference,
               bool throughput = false);

    // A figure that stands alone, or beside another of the same unit.
    void Figure(const std::string& what, Target target, const std::string& unit, double ours,
                std::optional<double> reference = std::nullopt);

    // Writes the rows as a table to standard output, and as JSON when a file is named. True when no row is missed.
    bool Finish(const std::string& jsonFile) const;

private:
    static constexpr double kLinear = 1.3;

    using Slice = std::function<void(std::size_t calls)>;
    template <typename Call>
    static Slice Repeated(Call call) {
        return [call](std::size_t calls) {
            for (std::size_t i = 0; i < calls; ++i) {
                const auto result = call();
                Keep(&result);
            }
        };
    }

    struct Row {
        std::string what;
        std::string unit;
        double ours = 0;
        std::optional<double> reference;
        double ratio = 0;
        double spread = 0;
        std::optional<double> p10;
        Target target;
    };
    void Sliced(const std::string& what, Target target, const Slice& ours, const Slice& reference, double factor);
    void Add(Row row);
    static std::string Verdict(const Row& row);
    static std::string TableLine(const Row& row);

    const std::string m_filter;
    const int m_rounds;
    std::vector<Row> m_rows;
};

}  // namespace bench
