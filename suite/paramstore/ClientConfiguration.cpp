#include "ClientConfiguration.h"

#include <algorithm>
#include <iterator>

#include "SettingRules.h"
#include "Utf8Text.h"

namespace suite {
namespace {

struct TextMember {
    const char* key;
    std::wstring ClientConfiguration::*setting;
    const char* (*check)(const std::string& text);
};

constexpr TextMember kTextMembers[] = {
    {"portalUrl", &ClientConfiguration::portalUrl, CheckBaseUrl},
    {"gatewayUrl", &ClientConfiguration::gatewayUrl, CheckBaseUrl},
    {"syncServerUrl", &ClientConfiguration::syncServerUrl, CheckBaseUrl},
    {"userInformationServiceUrl", &ClientConfiguration::userInformationServiceUrl, CheckBaseUrl},
    {"basicServiceUrl", &ClientConfiguration::basicServiceUrl, CheckBaseUrl},
    {"countryCode", &ClientConfiguration::countryCode, CheckPlainText},
    {"clientMode", &ClientConfiguration::clientMode, CheckPlainText},
    {"appDataLocalPath", &ClientConfiguration::appDataLocalPath, CheckFolder},
    {"stateFolder", &ClientConfiguration::stateFolder, CheckFolder},
};

constexpr char kLegacyItemsKey[] = "legacyItems";

std::wstring WithoutTrailingSeparators(std::wstring path) {
    path.erase(path.find_last_not_of(L"\\/") + 1);
    return path;
}

// Reads the members of one text into a configuration; stops at the first error.
class MemberReader {
public:
    MemberReader(const ConfigurationText& text, ClientConfiguration& configuration, std::string& error)
        : m_text(text), m_configuration(configuration), m_error(error) {}

    bool ReadMember(const std::string& key, const Json::Value& value) {
        if (key == kLegacyItemsKey) {
            return ReadLegacyItems(value);
        }
        const auto member = std::find_if(std::begin(kTextMembers), std::end(kTextMembers),
                                         [&key](const TextMember& candidate) { return key == candidate.key; });
        // A mistyped key would otherwise leave a default in force without a word.
        return member == std::end(kTextMembers)
                   ? Fail(value, key, "is not a known setting")
                   : ReadText(value, key, member->check, m_configuration.*(member->setting));
    }

private:
    bool ReadText(const Json::Value& value, const std::string& key, const char* (*check)(const std::string&),
                  std::wstring& target) {
        if (!value.isString()) {
            return Fail(value, key, "must be a text");
        }
        const std::string text = value.asString();
        if (const char* reason = check(text)) {
            return Fail(value, key, reason);
        }
        std::optional<std::wstring> wide =
            suite::WideFromValidUtf8(text);  // an escaped lone surrogate gets past the parser
        if (!wide) {
            return Fail(value, key, "is not valid Unicode");
        }
        target = check == CheckFolder ? WithoutTrailingSeparators(std::move(*wide)) : std::move(*wide);
        return true;
    }

    bool ReadLegacyItems(const Json::Value& items) {
        if (!items.isObject()) {
            return Fail(items, kLegacyItemsKey, "must be an object");
        }
        m_configuration.legacyItems.clear();
        for (const std::string& name : items.getMemberNames()) {
            const std::string key = kLegacyItemsKey + ("." + name);
            const int number = LegacyItemNumber(name);
            if (number < 0) {
                return Fail(items[name], key, "is not an item number");
            }
            if (!ReadText(items[name], key, CheckPlainText, m_configuration.legacyItems[number])) {
                return false;
            }
        }
        return true;
    }

    bool Fail(const Json::Value& value, const std::string& key, const char* reason) {
        m_error = m_text.MemberError(value, key, reason);
        return false;
    }

    const ConfigurationText& m_text;
    ClientConfiguration& m_configuration;
    std::string& m_error;
};

}  // namespace

std::optional<ClientConfiguration> ReadClientConfiguration(ConfigurationText& text, ClientConfiguration base,
                                                           std::string& error) {
    if (!text.Read(error)) {
        return std::nullopt;
    }
    MemberReader reader(text, base, error);
    for (const std::string& key : text.Root().getMemberNames()) {
        if (!reader.ReadMember(key, text.Root()[key])) {
            return std::nullopt;
        }
    }
    return base;
}

}  // namespace suite
