#include "FuzzTarget.h"

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

void Require(bool holds, const char* text) {
    if (!holds) {
        std::fprintf(stderr, "finding: %s\n", text);
        std::abort();
    }
}

std::string Expanded(const std::string& text, const std::string& mark, const std::string& replacement) {
    std::string expanded;
    std::size_t from = 0;
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, from)) {
        expanded.append(text, from, at - from).append(replacement);
        from = at + mark.size();
    }
    return expanded.append(text, from, std::string::npos);
}

// "--list" prints the program's targets, "--target=NAME" selects one; libFuzzer passes over words that begin so.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    const std::string option = "--target=";
    for (int index = 1; index < *argc; ++index) {
        const std::string word = (*argv)[index];
        if (word == "--list") {
            for (const auto& [name, run] : Targets()) {
                std::puts(name.c_str());
            }
            std::exit(0);
        }
        const auto found = word.rfind(option, 0) == 0 ? Targets().find(word.substr(option.size())) : Targets().end();
        g_run = found == Targets().end() ? g_run : found->second;
    }
    if (g_run == nullptr) {
        std::fputs("say which target: --target=NAME; --list prints the names\n", stderr);
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    g_run(FuzzInput({reinterpret_cast<const char*>(data), size}));
    return 0;
}
