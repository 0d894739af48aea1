#pragma once

#include <string>
#include <vector>

namespace host {

// Rows of a step's result. Texts are UTF-8. Every row has one text for each column.
struct Table {
    std::vector<std::string> columns;  // names in lower-case words
    std::vector<std::vector<std::string>> rows = {};
};

// The table as lines with aligned columns, the names first; each starts with a line feed and the indent. Empty when
// there are no rows. Texts that would control a terminal are made printable.
// width: columns of the terminal, to which the widest texts are cut; 0 cuts nothing.
std::string TableText(const Table& table, std::size_t indent, std::size_t width);

// The text broken at blanks, so that a terminal of so many columns does not break it within a word; lines after the
// first start with the indent. taken: columns before the text. width 0 breaks nothing; a longer word stays whole.
std::string Wrapped(const std::string& text, std::size_t taken, std::size_t indent, std::size_t width);

}  // namespace host
