#pragma once

#include <cstddef>
#include <string>

namespace host {

// Before a text on a terminal: goes to the start of the current line and clears it.
constexpr char kRewriteLine[] = "\r\x1b[K";

// The program's standard output and standard error. Texts are UTF-8 with "\n" line ends; they reach a terminal as
// Unicode and a file or pipe as they stand.
class Console {
public:
    Console();

    void Write(const std::string& text);
    void WriteError(const std::string& text);

    // Whether standard output is a terminal on which a line may be rewritten.
    bool IsTerminal() const { return m_terminal; }
    // Columns of that terminal now; 0 where there is none.
    std::size_t Width() const;
    // Whether that terminal may be coloured: not when the environment variable NO_COLOR has a value.
    bool HasColour() const { return m_colour; }

private:
    bool m_terminal = false;
    bool m_colour = false;
};

}  // namespace host
