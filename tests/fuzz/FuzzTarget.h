#pragma once

#include <string>
#include <vector>

// One input. Choices come from its front, so that a seed is a readable text: "0" is the first of a choice.
struct FuzzInput {
    std::size_t Choice(std::size_t count);
    // What is left, in the parts that "~" separates, and an empty one behind them.
    std::vector<std::string> Parts() const;

    std::string text;
};

// What stands before the first "-" of a target's name names its dictionary, the whole name its seeds.
struct FuzzTarget {
    FuzzTarget(const char* name, void (*run)(FuzzInput input));
};

// Ends the fuzzer with the text when the condition does not hold: a finding.
void Require(bool holds, const char* text);

// Replaces every mark, but not in what it was replaced with.
std::string Expanded(const std::string& text, const std::string& mark, const std::string& replacement);

// A few marks stand for something long, so that a short input reaches the limits; many stand for themselves.
std::string Stretched(const std::string& text, char mark, const std::string& replacement);
