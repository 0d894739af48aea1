#pragma once

#include <json/json.h>

#include <optional>
#include <string>

namespace suite {

// The text of a configuration and the value parsed from it. Errors are UTF-8 texts "FILE:LINE: KEY: reason", or
// "FILE: reason" when they have no line; a text that is in no file has "configuration" for FILE.
class ConfigurationText {
public:
    static ConfigurationText InFile(const std::wstring& file);
    static ConfigurationText InMemory(const std::string& text);

    // Reads the file, when there is one, and parses: UTF-8, at most 1 MiB, an object at the root, no duplicate keys.
    // Comments are allowed.
    bool Read(std::string& error);

    const Json::Value& Root() const { return m_root; }
    // The error of one member; the line is that of its value. The key may hold anything.
    std::string MemberError(const Json::Value& value, const std::string& key, const std::string& reason) const;

private:
    const char* ReadBytes();
    std::string Parse();
    std::string LinePrefix(std::ptrdiff_t offset) const;

    std::optional<std::wstring> m_file;
    std::string m_text;
    std::string m_name = "configuration";  // FILE of the errors
    Json::Value m_root;
};

}  // namespace suite
