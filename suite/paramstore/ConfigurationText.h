#pragma once

#include <json/json.h>

#include <string>

// The text of a configuration file and the value parsed from it. Errors are UTF-8 texts "FILE:LINE: KEY: reason", or
// "FILE: reason" when they have no line.
class ConfigurationText {
public:
    explicit ConfigurationText(std::wstring file);

    // Reads and parses the file: UTF-8, at most 1 MiB, an object at the root, no duplicate keys. Comments are allowed.
    bool Read(std::string& error);

    const Json::Value& Root() const { return m_root; }
    // The error of one member; the line is that of its value. The key may hold anything.
    std::string MemberError(const Json::Value& value, const std::string& key, const std::string& reason) const;

private:
    bool ReadBytes(std::string& error);
    bool Parse(std::string& error);
    std::size_t LineAt(std::ptrdiff_t offset) const;

    std::wstring m_file;
    std::string m_text;
    Json::Value m_root;
};
