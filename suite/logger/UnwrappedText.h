#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace suite {

// A text with its encodings taken off: percent signs ("%3D"), escapes of JSON ("\u003d", "\x3d" and all backslashes),
// of XML ("&#61;", "&quot;"), and the NULs of UTF-16 that is read as bytes. Up to eight wrappings, mixed at will;
// linear in the text. Only ASCII characters are unescaped from JSON and XML.
class UnwrappedText {
public:
    using LevelFunction = std::function<void(const UnwrappedText& soFar)>;

    // onLevel: called after each wrapping. One too many may take a part of the text for an encoding: "%25ab" is "%ab",
    // and then a byte.
    explicit UnwrappedText(std::string_view original, const LevelFunction& onLevel = {});

    // False: the constructor would find nothing to take off.
    static bool IsWrapped(std::string_view text);

    const std::string& Text() const { return m_text; }
    // Where the encoding of a character begins in the original, dropped marks in front of it included. The position
    // behind the last character gives the original's end.
    std::size_t OriginalAt(std::size_t at) const { return m_begins.empty() ? at : m_begins[at]; }

private:
    void TakeOneLevelOff();

    std::string m_text;
    std::vector<std::size_t> m_begins;
};

}  // namespace suite
