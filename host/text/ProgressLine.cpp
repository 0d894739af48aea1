#include "text/ProgressLine.h"

#include <algorithm>

#include "text/FieldText.h"

namespace host {
namespace {

constexpr std::size_t kLeastCells = 5;
constexpr std::size_t kMostCells = 30;

std::string Bar(double share, std::size_t cells) {
    const auto filled = std::min(cells, static_cast<std::size_t>(share * static_cast<double>(cells)));
    return "[" + std::string(filled, '#') + std::string(cells - filled, '-') + "] ";
}

}  // namespace

std::string ProgressLine(std::uint64_t bytes, std::uint64_t total, std::chrono::duration<double> elapsed,
                         std::size_t width) {
    const double rate = elapsed.count() > 0 ? static_cast<double>(bytes) / elapsed.count() : 0;
    const std::string rateText = ", " + Bytes(static_cast<std::uintmax_t>(rate)) + "/s";
    if (total == 0) {
        return (Bytes(bytes) + rateText).substr(0, width);
    }
    std::string line = Bytes(bytes) + " of " + Bytes(total) + rateText;
    if (rate > 0 && bytes < total) {
        line +=
            ", " + std::to_string(static_cast<std::uint64_t>(static_cast<double>(total - bytes) / rate)) + " s left";
    }
    const std::size_t frame = Bar(0, 0).size() + 1;  // and the column that stays free
    const std::size_t room = width > line.size() + frame ? width - line.size() - frame : 0;
    if (room >= kLeastCells) {
        line.insert(0, Bar(static_cast<double>(bytes) / static_cast<double>(total), std::min(room, kMostCells)));
    }
    return line.substr(0, width);
}

}  // namespace host
