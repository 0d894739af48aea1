#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace host {

// How far a download is, in fewer columns than the width. With a total of 0, which is unknown: "3.1 MiB, 1.2 MiB/s";
// else "[#####-----] 3.1 MiB of 6.2 MiB, 1.2 MiB/s, 3 s left", the bar as wide as there is room.
std::string ProgressLine(std::uint64_t bytes, std::uint64_t total, std::chrono::duration<double> elapsed,
                         std::size_t width);

}  // namespace host
