#include "text/Table.h"

#include <algorithm>
#include <numeric>

#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr std::size_t kGap = 2;

struct CodeUnits {
    wchar_t first;
    wchar_t last;
};

// Code units that a terminal shows two cells wide: East Asian scripts and forms (UAX 11, in blocks), and the first
// halves of surrogate pairs.
constexpr CodeUnits kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF}, {0xAC00, 0xD7A3}, {0xD800, 0xDBFF},
                               {0xF900, 0xFAFF}, {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}};
// Code units that take no cell: second halves of surrogate pairs, and marks above or below a letter (Latin, Thai).
constexpr CodeUnits kNoWidth[] = {{0xDC00, 0xDFFF}, {0x0300, 0x036F}, {0x0E31, 0x0E31}, {0x0E34, 0x0E3A},
                                  {0x0E47, 0x0E4E}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}};

template <std::size_t Count>
bool IsIn(const CodeUnits (&ranges)[Count], wchar_t c) {
    return std::any_of(ranges, ranges + Count,
                       [c](const CodeUnits& range) { return c >= range.first && c <= range.last; });
}

std::size_t CellsOf(const std::string& text) {
    std::size_t cells = 0;
    for (const wchar_t c : ToWide(text)) {
        cells += IsIn(kNoWidth, c) ? 0 : IsIn(kWide, c) ? 2 : 1;
    }
    return cells;
}

std::vector<std::size_t> WidthsOf(const Table& table) {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        std::size_t width = CellsOf(table.columns[column]);
        for (const std::vector<std::string>& row : table.rows) {
            width = std::max(width, CellsOf(Printable(row[column])));
        }
        widths.push_back(width);
    }
    return widths;
}

// Takes from the widest column, cell by cell, until the line fits. A column keeps a few cells however narrow the
// terminal.
void Fit(std::vector<std::size_t>& widths, std::size_t cells) {
    constexpr std::size_t kNarrowest = 4;
    std::size_t sum = std::accumulate(widths.begin(), widths.end(), widths.size() * kGap);
    for (; sum > cells; --sum) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= kNarrowest) {
            return;
        }
        --*widest;
    }
}

// The text within so many cells, with an ellipsis where it was cut.
std::string Cut(const std::string& text, std::size_t cells) {
    if (CellsOf(text) <= cells) {
        return text;
    }
    std::wstring wide = ToWide(text);
    do {
        // What takes no cell, a mark or the second half of a pair, goes with the character before it.
        while (wide.size() > 1 && IsIn(kNoWidth, wide.back())) {
            wide.pop_back();
        }
        wide.pop_back();
    } while (!wide.empty() && CellsOf(ToUtf8(wide)) >= cells);
    return ToUtf8(wide) + "\u2026";
}

std::string Line(const std::vector<std::string>& row, const std::vector<std::size_t>& widths, std::size_t indent) {
    std::string line = "\n" + std::string(indent, ' ');
    for (std::size_t column = 0; column < row.size(); ++column) {
        const std::string text = Cut(Printable(row[column]), widths[column]);
        line += text + std::string(widths[column] + kGap - CellsOf(text), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace

std::string TableText(const Table& table, std::size_t indent, std::size_t width) {
    if (table.rows.empty()) {
        return "";
    }
    std::vector<std::size_t> widths = WidthsOf(table);
    if (width != 0) {
        Fit(widths, width - std::min(width, indent));
    }
    std::string text = Line(table.columns, widths, indent);
    for (const std::vector<std::string>& row : table.rows) {
        text += Line(row, widths, indent);
    }
    return text;
}

std::string Wrapped(const std::string& text, std::size_t taken, std::size_t indent, std::size_t width) {
    std::string wrapped;
    for (std::size_t gap = 0, end = 0; gap < text.size(); gap = end) {
        const std::size_t word = std::min(text.find_first_not_of(' ', gap), text.size());
        end = std::min(text.find(' ', word), text.size());
        const std::size_t cells = CellsOf(text.substr(gap, end - gap));
        if (width != 0 && gap != 0 && taken + cells > width) {
            wrapped += "\n" + std::string(indent, ' ');
            taken = indent + cells - (word - gap);
        } else {
            wrapped.append(text, gap, word - gap);
            taken += cells;
        }
        wrapped.append(text, word, end - word);
    }
    return wrapped;
}

}  // namespace host
