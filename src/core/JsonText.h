#pragma once

#include <json/forwards.h>

#include <string>

namespace userauth {

// Everything that turns JSON text into values and back. Whatever the text, nothing is thrown but std::bad_alloc: the
// library's exceptions (nesting beyond its limit of 1,000 among them) count as a failed parse. So does a text with more
// than 1,024 digits in a row outside strings and comments, wherever they stand: it is not parsed at all.

// Parses a whole text. True only for an array or an object at the root; false on empty text. On failure value holds
// what the reader left.
bool ParseJsonText(std::string text, Json::Value& value);

// Parses with the library's default settings and ignores the outcome: a malformed text yields what the reader left.
Json::Value ParseLeniently(const std::string& text);

// Parses a server's reply or a file with the library's older reader, whose rules differ from those above: a byte-order
// mark, a trailing comma and a plus sign before a number are errors, and a minus sign alone is 0. Comments are allowed
// and collected. False with value null when the text is not JSON.
bool ParseDocument(const std::string& text, Json::Value& value);

// One line, no indentation, ending in a line feed, everything outside ASCII escaped: a request body.
std::string WriteCompactLine(const Json::Value& value);

// The library's toStyledString and writeString, but for one thing: those write to a stream, which keeps want of memory
// to itself, and give a text that is cut. Here that is std::bad_alloc. What toStyledString writes on one line, a text
// or number without a comment, goes through the compact writer, which gives the same bytes without the library's making
// a table of its settings first.
std::string WriteStyledText(const Json::Value& value);
std::string WriteBy(const Json::StreamWriterBuilder& rules, const Json::Value& value);

// The layout of a configuration file: indented, short arrays on one line, ending in a line feed.
std::string WriteStyledDocument(const Json::Value& value);

}  // namespace userauth
