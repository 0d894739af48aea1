#pragma once

#include <cstddef>
#include <string>
#include <vector>

// One input. Targets take their choices from its front, so that a seed is a readable text: "0" is the first of a
// choice, "1" the second.
class FuzzInput {
public:
    explicit FuzzInput(std::string text) : m_text(std::move(text)) {}

    std::size_t Choice(std::size_t count) {
        if (m_text.empty()) {
            return 0;
        }
        const auto byte = static_cast<unsigned char>(m_text.front() - '0');
        m_text.erase(0, 1);
        return byte % count;
    }

    // What is left.
    const std::string& Text() const { return m_text; }

    // What is left, in the parts that "~" separates; at least one.
    std::vector<std::string> Parts() const {
        std::vector<std::string> parts(1);
        for (const char c : m_text) {
            c == '~' ? parts.emplace_back() : parts.back().append(1, c);
        }
        return parts;
    }

private:
    std::string m_text;
};

// A target by its name. What stands before the first "-" of the name names its dictionary, the whole name its seeds.
struct FuzzTarget {
    FuzzTarget(const char* name, void (*run)(FuzzInput input));
};

// Ends the fuzzer with the text when the condition does not hold: a finding.
void Require(bool holds, const char* text);

// Replaces every mark in the text, but not in what it was replaced with.
std::string Expanded(const std::string& text, const std::string& mark, const std::string& replacement);
