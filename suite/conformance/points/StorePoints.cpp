#include <ParamStore.h>

#include <thread>

#include "Examination.h"
#include "Folder.h"

namespace conformance {

namespace {

using Store = GlobalParamWrapper;

Store& TheStore() {
    return *Store::GetInstance();
}

std::wstring LegacyItem() {
    return ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken);
}

void Load(const std::string& json) {
    std::string error;
    Require(TheStore().LoadConfigurationText(json, error), "refused: " + Shown(error));
}

struct Setting {
    const char* key;
    const char* json;  // the value as the configuration has it
    std::wstring value;
    std::wstring (Store::*get)() const;
};

const Setting kSettings[] = {
    {"portalUrl", "https://portal.example", L"https://portal.example", &Store::GetPortalUrl},
    {"gatewayUrl", "HTTP://gateway.example:81/gw", L"HTTP://gateway.example:81/gw", &Store::GetGWUrl},
    {"syncServerUrl", "https://sync.example", L"https://sync.example", &Store::GetSyncServerUrl},
    {"userInformationServiceUrl", "https://user.example", L"https://user.example",
     &Store::GetUserInformationserviceUrl},
    {"basicServiceUrl", "https://basic.example/a/b", L"https://basic.example/a/b", &Store::GetBasicUrl},
    {"countryCode", "\xC3\xA9", L"\u00E9", &Store::GetCountryCode},
    {"clientMode", "7", L"7", &Store::GetZvClientMode},
    {"appDataLocalPath", R"(C:\\data \u4e2d\\)", L"C:\\data \u4E2D", &Store::GetAppDataLocalPath},
};

void ExamineSettings(Examination& examination) {
    examination.Point("GetInstance gives one object, of both classes", [] {
        Require(Store::GetInstance() != nullptr && Store::GetInstance() == Store::GetInstance(), "GlobalParamWrapper");
        Require(ConfigEntityManager::GetInstance() == ConfigEntityManager::GetInstance(), "ConfigEntityManager");
    });
    examination.Point("base URLs and legacy items are empty until configured; the data folder is not", [] {
        for (const Setting& setting : kSettings) {
            const std::wstring value = (TheStore().*setting.get)();
            Require(std::string(setting.key).find("Url") == std::string::npos || value.empty(), setting.key);
        }
        RequireEqual(LegacyItem(), std::wstring(), "the legacy item");
        Require(!TheStore().GetAppDataLocalPath().empty(), "no folder for files");
    });
    for (const Setting& setting : kSettings) {
        examination.Point(std::string("the configuration sets ") + setting.key + ", and keeps what it does not name",
                          [&] {
                              Load(std::string("{\"") + setting.key + "\":\"" + setting.json + "\"}");
                              for (const Setting* other = kSettings; other <= &setting; ++other) {
                                  RequireEqual((TheStore().*other->get)(), other->value, other->key);
                              }
                          });
    }
    examination.Point("the configuration sets a legacy item", [] {
        Load(R"({"legacyItems":{"0":"AQID"}})");
        RequireEqual(LegacyItem(), std::wstring(L"AQID"), "the item");
    });
    examination.Point("the configuration may hold comments",
                      [] { Load("// why\n{\"clientMode\":\"7\" /* because */}"); });
}

void ExamineFaults(Examination& examination) {
    const struct {
        const char* name;
        const char* json;
        const char* error;  // begins so
    } rows[] = {
        {"a text that is no JSON", "{\"countryCode\":\"FR\",\n}", "configuration:2: "},
        {"an unknown member", "{\"countryCode\":\"FR\",\n\"portalURL\":\"https://b\"}", "configuration:2: portalURL: "},
        {"a number for a text", "{\"countryCode\":\"FR\",\n\n\"clientMode\":3}", "configuration:3: clientMode: "},
        {"a URL of another scheme", "{\"countryCode\":\"FR\",\n\"gatewayUrl\":\"ftp://b\"}",
         "configuration:2: gatewayUrl: "},
        {"a folder that is not absolute", "{\"countryCode\":\"FR\",\n\"stateFolder\":\"a\"}",
         "configuration:2: stateFolder: "},
        {"a legacy item of another type", "{\"countryCode\":\"FR\",\n\"legacyItems\":{\"0\":{}}}",
         "configuration:2: legacyItems.0: "},
    };
    for (const auto& row : rows) {
        examination.Point(std::string(row.name) + " is refused with line and key, and nothing is changed", [&row] {
            std::string error;
            Require(!TheStore().LoadConfigurationText(row.json, error), "taken");
            Require(error.compare(0, std::string(row.error).size(), row.error) == 0, "the text is " + Shown(error));
            RequireEqual(TheStore().GetCountryCode(), kSettings[5].value, "the member before the wrong one");
        });
    }
    examination.Point("a file is read like a text, and an error begins with the file's name", [] {
        const Folder folder(L"store");
        std::string error;
        WriteText(folder / L"client.json", "{\"clientMode\":\"8\"}");
        Require(TheStore().LoadConfiguration((folder / L"client.json").wstring(), error), Shown(error));
        RequireEqual(TheStore().GetZvClientMode(), std::wstring(L"8"), "the setting");
        WriteText(folder / L"client.json", "\n[]");
        Require(!TheStore().LoadConfiguration((folder / L"client.json").wstring(), error), "an array was taken");
        const std::string begin = (folder / L"client.json").u8string() + ":2: ";
        Require(error.compare(0, begin.size(), begin) == 0, "the text is " + Shown(error));
        error.clear();
        Require(!TheStore().LoadConfiguration((folder / L"none.json").wstring(), error) && !error.empty(),
                "a missing file was taken, or without a text");
    });
}

void ExamineBaseUrls(Examination& examination) {
    const struct {
        const char* url;
        bool isBaseUrl;
    } rows[] = {
        {"http://h", true},          {"HtTpS://h.example:65535/a/b", true},
        {"http://[::1]:8080", true}, {"", false},
        {"h.example", false},        {"ftp://h", false},
        {"http://", false},          {"http:///a", false},
        {"http://h:0", false},       {"http://h:65536", false},
        {"http://h/", false},        {"http://h/a/", false},
        {"http://h/a b", false},     {"http://h/a\t", false},
        {"http://h\\a", false},      {"http://user@h", false},
        {"http://h?a", false},       {"http://h#a", false},
    };
    for (const auto& row : rows) {
        const std::string url = Shown(std::string(row.url));
        examination.Point("BaseUrlFault " + std::string(row.isBaseUrl ? "takes " : "names the fault of ") + url,
                          [&row] {
                              const std::string fault = Store::BaseUrlFault(row.url);
                              Require(fault.empty() == row.isBaseUrl, "it says " + Shown(fault));
                          });
    }
}

struct Value {
    const char* name;
    void (Store::*set)(const std::wstring&);
    std::wstring (Store::*get)() const;
};

const Value kValues[] = {
    {"the access token", &Store::SetCurrentAt, &Store::GetCurrentAt},
    {"the refresh token", &Store::SetCurrentRt, &Store::GetCurrentRt},
    {"the user id", &Store::SetUserID, &Store::GetUserID},
    {"the application token", &Store::SetAppAT, &Store::GetAppAT},
};

struct Flag {
    const char* name;
    void (Store::*set)(bool);
    bool (Store::*get)() const;
};

const Flag kFlags[] = {{"the expiry flag", &Store::SetAtIsExpired, &Store::GetAtIsExpired},
                       {"the start-send flag", &Store::SetStartSend, &Store::GetStartSend}};

void ExamineValues(Examination& examination) {
    for (const Value& value : kValues) {
        examination.Point(std::string(value.name) + " comes back as it was set, and no other does", [&value] {
            const std::wstring texts[] = {L"first \u00E9\u4E2D \xD83D\xDE00", std::wstring(5000, L'x'), L""};
            for (const std::wstring& text : texts) {
                (TheStore().*value.set)(text);
                RequireEqual((TheStore().*value.get)(), text, "what comes back");
                for (const Value& other : kValues) {
                    Require(&other == &value || (TheStore().*other.get)().empty(), other.name);
                }
            }
        });
    }
    for (const Flag& flag : kFlags) {
        examination.Point(std::string(flag.name) + " comes back as it was set", [&flag] {
            for (const bool value : {true, false}) {
                (TheStore().*flag.set)(value);
                Require((TheStore().*flag.get)() == value, value ? "false after true" : "true after false");
            }
        });
    }
    examination.Point("the main window is null until it is set, and comes back", [] {
        Require(TheStore().GetMainWnd() == nullptr, "not null");
        TheStore().SetMainWnd(GetDesktopWindow());
        Require(TheStore().GetMainWnd() == GetDesktopWindow(), "another window");
        TheStore().SetMainWnd(nullptr);
    });
    examination.Point("the user record is one, without keys at first, and keeps what is written to it", [] {
        st_UserInfo& record = TheStore().GetUserInfo();
        for (const std::uint8_t byte : record.photoKey3) {
            Require(byte == 0, "a key is there");
        }
        record.driveKey1[0] = 7;
        Require(&TheStore().GetUserInfo() == &record && TheStore().GetUserInfo().driveKey1[0] == 7, "another record");
        record.driveKey1[0] = 0;
    });
    examination.Point("two writers and a reader: every text that is read is one that was written", [] {
        const std::wstring texts[] = {std::wstring(200, L'a'), std::wstring(300, L'b')};
        TheStore().SetCurrentAt(texts[0]);
        std::thread writers[2];
        for (int i = 0; i < 2; ++i) {
            writers[i] = std::thread([&texts, i] {
                for (int round = 0; round < 2000; ++round) {
                    TheStore().SetCurrentAt(texts[i]);
                }
            });
        }
        bool whole = true;
        for (int round = 0; round < 2000; ++round) {
            const std::wstring read = TheStore().GetCurrentAt();
            whole = whole && (read == texts[0] || read == texts[1]);
        }
        for (std::thread& writer : writers) {
            writer.join();
        }
        Require(whole, "a mixture was read");
    });
}

}  // namespace

void ExamineParamStore(Examination& examination) {
    ExamineSettings(examination);
    ExamineFaults(examination);
    ExamineBaseUrls(examination);
    ExamineValues(examination);
    ExamineStoredIdentity(examination);
    TheStore().SetUserID(L"still here");
}

void ExamineParamStoreAtTheEnd() {
    TheStore().SetUserID(L"set at the end");
    RequireEqual(TheStore().GetUserID(), std::wstring(), "the user id");
    RequireEqual(TheStore().GetPortalUrl(), std::wstring(), "the portal");
    RequireEqual(LegacyItem(), std::wstring(), "the legacy item");
}

}  // namespace conformance
