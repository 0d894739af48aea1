// The benchmark's report, where instructions take the place of seconds: under valgrind's callgrind, which counts what
// the calling thread executes between two requests and then writes the sum under a name. Both sides of a row run one
// after the other; nothing else on the machine shows in the figures.

#include <valgrind/callgrind.h>

#include <deque>

#include "Harness.h"

namespace bench {
namespace {

constexpr std::size_t kWarmUpCalls = 20;
constexpr std::size_t kCountedCalls = 50;

template <typename Slice>
void Count(const std::string& what, const char* side, const Slice& slice) {
    slice(kWarmUpCalls);
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    slice(kCountedCalls);
    CALLGRIND_TOGGLE_COLLECT;
    // Read by valgrind some time later.
    static std::deque<std::string> names;
    names.push_back(std::to_string(kCountedCalls) + "|" + side + "|" + what);
    CALLGRIND_DUMP_STATS_AT(names.back().c_str());
}

}  // namespace

void Report::Sliced(const std::string& what, Target, const Slice& ours, const Slice& reference, double factor) {
    if (factor == 1 && Wants(what)) {
        Count(what, "ours", ours);
        Count(what, "reference", reference);
    }
}

void Report::Calls(const std::string& what, Target target, const Work& ours, const Work& reference) {
    const auto repeated = [](const Work& work) {
        return [&work](std::size_t calls) {
            for (std::size_t i = 0; i < calls; ++i) {
                work();
            }
        };
    };
    Sliced(what, target, repeated(ours), repeated(reference), 1);
}

// Several threads, waiting, or so much memory that instructions tell little.
void Report::Timed(const std::string&, Target, const Measured&, const Measured&, bool) {}
void Report::Figure(const std::string&, Target, const std::string&, double, std::optional<double>) {}

}  // namespace bench
