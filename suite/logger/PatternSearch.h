#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace suite {

// Overwrites the text's characters.
void Wipe(std::string& text);

// Finds any of several byte patterns in one pass over a text (Aho and Corasick, 1975). Wipes itself when it goes.
class PatternSearch {
public:
    explicit PatternSearch(const std::vector<std::string>& patterns);
    ~PatternSearch();
    PatternSearch(const PatternSearch&) = delete;
    PatternSearch& operator=(const PatternSearch&) = delete;

    struct Match {
        std::size_t begin;
        std::size_t end;
    };
    // For each position at which patterns end, the longest of them. "-" and "_" count as "+" and "/", so that the two
    // alphabets of base64 are one, and a blank as "+", which it becomes in a form.
    std::vector<Match> FindAll(std::string_view text) const;

private:
    // Nodes are named by their index. The root is 0, which also stands for "none".
    struct Node {
        std::uint8_t character = 0;
        std::uint32_t firstChild = 0;
        std::uint32_t nextSibling = 0;
        std::uint32_t fallback = 0;  // of what was read, the longest end that begins a pattern too
        std::uint32_t matched = 0;   // length of the longest pattern that ends here; 0: none
    };

    void Add(std::string_view pattern);
    void Link();
    std::uint32_t Child(std::uint32_t node, std::uint8_t character) const;
    std::uint32_t Next(std::uint32_t node, std::uint8_t character) const;

    std::vector<Node> m_nodes;
    std::array<std::uint32_t, 256> m_first{};  // the root's children
};

}  // namespace suite
