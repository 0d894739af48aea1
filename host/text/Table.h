#pragma once

#include <string>
#include <vector>

namespace host {

// Rows of a step's result. Texts are UTF-8; every row has as many as there are columns.
struct Table {
    std::vector<std::string> columns;  // names in lower-case words
    std::vector<std::vector<std::string>> rows = {};
};

// The table as lines with aligned columns, the names first; each starts with a line feed and the indent. Empty when
// there are no rows. Texts that would control a terminal are made printable.
std::string TableText(const Table& table, std::size_t indent);

}  // namespace host
