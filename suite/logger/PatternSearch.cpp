#include "PatternSearch.h"

#include <windows.h>

#include <algorithm>

namespace suite {
namespace {

std::uint8_t Folded(char c) {
    return static_cast<std::uint8_t>(c == '-' || c == ' ' ? '+' : c == '_' ? '/' : c);
}

}  // namespace

void Wipe(std::string& text) {
    SecureZeroMemory(text.data(), text.size());
    text.clear();
}

PatternSearch::PatternSearch(const std::vector<std::string>& patterns) {
    std::size_t characters = 1;
    for (const std::string& pattern : patterns) {
        characters += pattern.size();
    }
    m_nodes.reserve(characters);  // growing would leave copies behind
    m_nodes.emplace_back();
    for (const std::string& pattern : patterns) {
        Add(pattern);
    }
    Link();
}

PatternSearch::~PatternSearch() {
    SecureZeroMemory(m_nodes.data(), m_nodes.size() * sizeof(Node));
}

void PatternSearch::Add(std::string_view pattern) {
    std::uint32_t node = 0;
    for (const char c : pattern) {
        const std::uint8_t character = Folded(c);
        std::uint32_t child = Child(node, character);
        if (child == 0) {
            child = static_cast<std::uint32_t>(m_nodes.size());
            Node added;
            added.character = character;
            added.nextSibling = m_nodes[node].firstChild;
            m_nodes.push_back(added);
            m_nodes[node].firstChild = child;
            if (node == 0) {
                m_first[character] = child;
            }
        }
        node = child;
    }
    m_nodes[node].matched = static_cast<std::uint32_t>(pattern.size());
}

// Breadth first: a node's fallback is shorter than the node, so it is complete by then.
void PatternSearch::Link() {
    std::vector<std::uint32_t> order{0};
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::uint32_t parent = order[i];
        for (std::uint32_t child = m_nodes[parent].firstChild; child != 0; child = m_nodes[child].nextSibling) {
            order.push_back(child);
            Node& node = m_nodes[child];
            node.fallback = parent == 0 ? 0 : Next(m_nodes[parent].fallback, node.character);
            node.matched = std::max(node.matched, m_nodes[node.fallback].matched);
        }
    }
}

std::uint32_t PatternSearch::Child(std::uint32_t node, std::uint8_t character) const {
    if (node == 0) {
        return m_first[character];
    }
    std::uint32_t child = m_nodes[node].firstChild;
    while (child != 0 && m_nodes[child].character != character) {
        child = m_nodes[child].nextSibling;
    }
    return child;
}

std::uint32_t PatternSearch::Next(std::uint32_t node, std::uint8_t character) const {
    for (;;) {
        const std::uint32_t child = Child(node, character);
        if (child != 0 || node == 0) {
            return child;
        }
        node = m_nodes[node].fallback;
    }
}

std::vector<PatternSearch::Match> PatternSearch::FindAll(std::string_view text) const {
    std::vector<Match> matches;
    std::uint32_t node = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        node = Next(node, Folded(text[i]));
        if (m_nodes[node].matched != 0) {
            matches.push_back({i + 1 - m_nodes[node].matched, i + 1});
        }
    }
    return matches;
}

}  // namespace suite
