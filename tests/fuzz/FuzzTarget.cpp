#include "FuzzTarget.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

using Run = void (*)(FuzzInput input);

std::map<std::string, Run>& Targets() {
    static std::map<std::string, Run> targets;
    return targets;
}

Run g_run = nullptr;

}  // namespace

FuzzTarget::FuzzTarget(const char* name, Run run) { Targets().emplace(name, run); }

std::size_t FuzzInput::Choice(std::size_t count) {
    const auto byte = static_cast<unsigned char>(text.empty() ? 0 : text.front() - '0');
    text.erase(0, 1);
    return byte % count;
}

std::vector<std::string> FuzzInput::Parts() const {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        c == '~' ? parts.emplace_back() : parts.back().append(1, c);
    }
    parts.emplace_back();
    return parts;
}

void Require(bool holds, const char* text) {
    if (!holds) {
        std::fprintf(stderr, "finding: %s\n", text);
        std::abort();
    }
}

std::string Expanded(const std::string& text, const std::string& mark, const std::string& replacement) {
    std::string expanded;
    std::size_t begin = 0;
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, begin)) {
        expanded.append(text, begin, at - begin).append(replacement);
        begin = at + mark.size();
    }
    return expanded.append(text, begin);
}

std::string Stretched(const std::string& text, char mark, const std::string& replacement) {
    const bool few = std::count(text.begin(), text.end(), mark) < 4;
    return few ? Expanded(text, {mark}, replacement) : text;
}

// "--list" prints the program's targets, "--target=NAME" selects one; libFuzzer passes over words that begin so.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    for (const auto& [name, run] : Targets()) {
        for (int index = 1; index < *argc; ++index) {
            const std::string word = (*argv)[index];
            g_run = word == "--target=" + name ? run : g_run;
            if (word == "--list") {
                std::puts(name.c_str());
            }
        }
    }
    if (g_run == nullptr) {
        const bool listed = *argc == 2 && std::string((*argv)[1]) == "--list";
        std::exit(listed ? 0 : 2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    g_run({{reinterpret_cast<const char*>(data), size}});
    return 0;
}
