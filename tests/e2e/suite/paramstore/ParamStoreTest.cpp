#include "ParamStore.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <thread>

#include "TextFile.h"

namespace {

namespace fs = std::filesystem;

// A folder with non-ASCII characters in its name, which is part of every case.
fs::path Folder() {
    fs::path folder = fs::temp_directory_path() / L"store \u00E9\u4E2D";
    fs::create_directories(folder);
    return folder;
}

fs::path Written(const wchar_t* name, const std::string& text) {
    fs::path file = Folder() / name;
    WriteFile(file, text);
    return file;
}

bool Load(const std::string& text, std::string& error) {
    return GlobalParamWrapper::GetInstance()->LoadConfiguration(Written(L"client.json", text).wstring(), error);
}

// As the store writes the path.
fs::path UuidFile(const fs::path& folder) { return folder.wstring() + L"\\device-uuid"; }

std::wstring UuidIn(const fs::path& folder) {
    std::string error;
    std::string text = folder.u8string();
    std::replace(text.begin(), text.end(), '\\', '/');
    EXPECT_TRUE(Load("{\"stateFolder\":\"" + text + "\"}", error)) << error;
    return GlobalParamWrapper::GetInstance()->GetSystemUUid();
}

}  // namespace

TEST(ParamStoreConfiguration, NamedMembersReplaceTheOthersStay) {
    GlobalParamWrapper* store = GlobalParamWrapper::GetInstance();
    std::string error;
    EXPECT_EQ(store->GetZvClientMode(), L"1");
    EXPECT_FALSE(store->GetAppDataLocalPath().empty());
    ASSERT_TRUE(
        Load("\xEF\xBB\xBF// comment\n{\"portalUrl\":\"https://a\",\"appDataLocalPath\":\"C:\\\\d \xC3\xA9\\\\\","
             "\"legacyItems\":{\"0\":\"AQID\"}}",
             error))
        << error;
    ASSERT_TRUE(Load("{\"gatewayUrl\":\"HTTP://b:81/gw\",\"countryCode\":\"FR\"}", error)) << error;
    EXPECT_EQ(store->GetPortalUrl(), L"https://a");
    EXPECT_EQ(store->GetGWUrl(), L"HTTP://b:81/gw");
    EXPECT_EQ(store->GetCountryCode(), L"FR");
    EXPECT_EQ(store->GetAppDataLocalPath(), L"C:\\d \u00E9");
    EXPECT_EQ(ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken),
              L"AQID");
}

TEST(ParamStoreConfiguration, ErrorNamesFileLineAndKeyAndChangesNothing) {
    const struct {
        const char* name;
        std::string text;
        const char* error;  // what follows the file's name
    } rows[] = {
        {"empty file", "", ":1: not valid JSON"},
        {"array at the root", "\n[1]", ":2: must be a JSON object"},
        {"deep nesting", std::string(100000, '['), ": nested deeper than 16 levels"},
        {"NUL ends nothing", std::string("{}\n\0{", 5), ":2: not valid JSON: NUL character"},
        {"syntax", "{\n\"clientMode\": \"2\",\n}", ":3: not valid JSON: "},
        {"duplicate key", "{\"clientMode\":\"2\",\n\"clientMode\":\"3\"}", ":2: not valid JSON: Duplicate key"},
        {"duplicate key with control characters", "{\"a\x1b\":\"2\",\"a\x1b\":\"3\"}",
         ":1: not valid JSON: Duplicate key: 'a?'"},
        {"huge", std::string(1024 * 1024, ' ') + "{}", ": larger than 1 MiB"},
        {"not UTF-8", "{\"clientMode\":\"\xFF\"}", ": not valid UTF-8"},
        {"mistyped key", "{\"clientMode\":\"2\",\n\n\"portalURL\":\"https://b\"}",
         ":3: portalURL: is not a known setting"},
        {"key with line feed", "{\"a\\nb\":1}", ":1: a?b: is not a known setting"},
        {"number", "{\r\n\"countryCode\":33}", ":2: countryCode: must be a text"},
        {"null", "{\"stateFolder\":null}", ":1: stateFolder: must be a text"},
        {"folder of the drive's current one", "{\"stateFolder\":\"C:state\"}",
         ":1: stateFolder: must be an absolute path"},
        {"other scheme", "{\"clientMode\":\"2\",\n\"portalUrl\":\"ftp://b\"}",
         ":2: portalUrl: must be an http or https URL"},
        {"folder on no drive", R"({"stateFolder":"\\state"})", ":1: stateFolder: must be an absolute path"},
        {"drive that is no letter", R"({"stateFolder":"1:\\state"})", ":1: stateFolder: must be an absolute path"},
        {"drive alone", R"({"stateFolder":"C:"})", ":1: stateFolder: must be an absolute path"},
        {"letter behind no drive", R"({"stateFolder":"C\\\\state"})", ":1: stateFolder: must be an absolute path"},
        {"separators alone", R"({"stateFolder":"\\\\//"})", ":1: stateFolder: must name a folder"},
        {"empty folder", R"({"stateFolder":""})", ":1: stateFolder: must name a folder"},
        {"line feed in a folder", R"({"stateFolder":"C:\\a\nb"})",
         ":1: stateFolder: must not contain control characters"},
        {"DEL", "{\"clientMode\":\"a\x7F\"}", ":1: clientMode: must not contain control characters"},
        {"unit separator", R"({"clientMode":"\u001f"})", ":1: clientMode: must not contain control characters"},
        {"long key", "{\"" + std::string(65, 'k') + "\":1}",
         ":1: kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk: is not a known setting"},
        {"text behind the object", "{}\n{}", ":2: not valid JSON"},
        {"seventeen levels", "{\"a\":" + std::string(17, '[') + std::string(17, ']') + "}",
         ": nested deeper than 16 levels"},
        {"items in an array", R"({"legacyItems":["x"]})", ":1: legacyItems: must be an object"},
        {"item number with more behind it", R"({"legacyItems":{"0x":"y"}})",
         ":1: legacyItems.0x: is not an item number"},
        {"negative item number", R"({"legacyItems":{"-1":"y"}})", ":1: legacyItems.-1: is not an item number"},
        {"item number beyond 32 bits", R"({"legacyItems":{"4294967296":"y"}})",
         ":1: legacyItems.4294967296: is not an item number"},
        {"control character in an item", R"({"legacyItems":{"0":"\u0000"}})",
         ":1: legacyItems.0: must not contain control characters"},
        {"escaped line feed", "{\"countryCode\":\"F\\nR\"}", ":1: countryCode: must not contain control characters"},
        {"lone surrogate", "{\"countryCode\":\"\\udc00\"}", ":1: countryCode: is not valid Unicode"},
        {"item number", "{\"legacyItems\":{\n\"-0\":\"x\"}}", ":2: legacyItems.-0: is not an item number"},
        {"item of wrong type", "{\"legacyItems\":{\n\"0\":{}}}", ":2: legacyItems.0: must be a text"},
    };
    GlobalParamWrapper* store = GlobalParamWrapper::GetInstance();
    std::string error;
    ASSERT_TRUE(Load("{\"portalUrl\":\"https://kept\",\"clientMode\":\"9\",\"legacyItems\":{\"0\":\"kept\"}}", error));
    const std::string file = (Folder() / L"client.json").u8string();
    for (const auto& row : rows) {
        error.clear();
        EXPECT_FALSE(Load(row.text, error)) << row.name;
        EXPECT_EQ(error.compare(0, file.size() + std::string(row.error).size(), file + row.error), 0)
            << row.name << ": " << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << row.name;
        EXPECT_EQ(store->GetPortalUrl(), L"https://kept") << row.name;
        EXPECT_EQ(store->GetZvClientMode(), L"9") << row.name;
        EXPECT_EQ(ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken),
                  L"kept")
            << row.name;
    }
    EXPECT_FALSE(store->LoadConfiguration((Folder() / L"missing.json").wstring(), error));
    EXPECT_NE(error.find("missing.json: cannot be read"), std::string::npos) << error;
}

TEST(ParamStoreConfiguration, TakesWhatIsJustRight) {
    GlobalParamWrapper* store = GlobalParamWrapper::GetInstance();
    const struct {
        const char* name;
        std::string text;
        std::wstring (GlobalParamWrapper::*get)() const;
        std::wstring value;
    } rows[] = {
        {"1 MiB", "{\"countryCode\":\"1\"}" + std::string(1024 * 1024 - 19, '\n'), &GlobalParamWrapper::GetCountryCode,
         L"1"},
        {"all of ASCII that can be seen", R"({"clientMode":" !/~"})", &GlobalParamWrapper::GetZvClientMode, L" !/~"},
        {"a slash at a text's end", R"({"clientMode":"a/"})", &GlobalParamWrapper::GetZvClientMode, L"a/"},
        {"an empty text", R"({"clientMode":""})", &GlobalParamWrapper::GetZvClientMode, L""},
        {"a share", R"({"appDataLocalPath":"\\\\server\\share\\"})", &GlobalParamWrapper::GetAppDataLocalPath,
         L"\\\\server\\share"},
        {"slashes", R"({"appDataLocalPath":"c:/a/b//"})", &GlobalParamWrapper::GetAppDataLocalPath, L"c:/a/b"},
        {"a drive's root", R"({"appDataLocalPath":"Z:\\"})", &GlobalParamWrapper::GetAppDataLocalPath, L"Z:"},
    };
    for (const auto& row : rows) {
        std::string error;
        EXPECT_TRUE(Load(row.text, error)) << row.name << ": " << error;
        EXPECT_EQ((store->*row.get)(), row.value) << row.name;
    }
    const auto item = [] {
        return ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken);
    };
    std::string error;
    EXPECT_TRUE(Load(R"({"legacyItems":{"0":"a/"}})", error)) << error;
    EXPECT_EQ(item(), L"a/");
    EXPECT_TRUE(Load(R"({"legacyItems":{"7":"b"}})", error)) << error;
    EXPECT_EQ(item(), L"") << "the items are replaced as a whole";
}

TEST(ParamStoreConfiguration, ATextInMemoryIsReadLikeAFile) {
    GlobalParamWrapper* store = GlobalParamWrapper::GetInstance();
    std::string error;
    ASSERT_TRUE(store->LoadConfigurationText("{\"gatewayUrl\":\"http://h/base\"}", error)) << error;
    EXPECT_EQ(store->GetGWUrl(), L"http://h/base");
    EXPECT_FALSE(store->LoadConfigurationText("{\"clientMode\":\"2\",\n\"countryCode\":33}", error));
    EXPECT_EQ(error, "configuration:2: countryCode: must be a text");
}

// Which URLs are refused is judged beside the account SDK, in SandboxSdk.
TEST(ParamStoreConfiguration, ABaseUrlsFaultIsNamed) {
    for (const auto& [url, fault] : std::map<std::string, std::string>{
             {"http://h:", ""},  // the scheme's own port
             {"http://h:99999", "must have a port from 1 to 65535"},
             {"ftp://h", "must be an http or https URL"},
             {"http:///base", "must name a host"},
             {"http://h/", "must not end with a slash"},
             {"http://h\x1f", "must not contain control characters"},
             {"http://h b", "must not contain blanks, backslashes, a user name, a query or a fragment"}}) {
        EXPECT_EQ(GlobalParamWrapper::BaseUrlFault(url), fault) << url;
    }
}

TEST(ParamStoreSystemUuid, IsMadeOnceKeptAndReplacedWhenTheFileIsDamaged) {
    fs::remove_all(Folder());
    const std::wstring first = UuidIn(Folder() / "new" / "a");
    EXPECT_EQ(first.size(), 32U);
    EXPECT_EQ(first.find_first_not_of(L"0123456789abcdef"), std::wstring::npos);
    EXPECT_EQ(ReadFile(UuidFile(Folder() / "new" / "a")), Narrow(first));
    EXPECT_NE(UuidIn(Folder() / "b"), first);  // a folder of its own, an identity of its own
    EXPECT_EQ(UuidIn(Folder() / "new" / "a"), first);
    for (const char* damaged : {"", "0123456789ABCDEF0123456789ABCDEF", "0123456789abcdef0123456789abcdef0"}) {
        UuidIn(Folder() / "b");
        WriteFile(UuidFile(Folder()), damaged);
        const std::wstring replaced = UuidIn(Folder());
        EXPECT_EQ(replaced.size(), 32U) << damaged;
        EXPECT_EQ(ReadFile(UuidFile(Folder())), Narrow(replaced)) << damaged;
    }
    const std::wstring unwritable = UuidIn(Written(L"file", "") / "sub");
    EXPECT_EQ(unwritable.size(), 32U);
    EXPECT_EQ(GlobalParamWrapper::GetInstance()->GetSystemUUid(), unwritable);
    EXPECT_NE(GlobalParamWrapper::GetInstance()->GetSystemUUidFault(), "");
}

TEST(ParamStoreSystemUuid, ADrivesRootIsNotTheFolderThatIsCurrentOnIt) {
    const fs::path current = Folder() / "b";
    fs::create_directories(current);
    const fs::path root = Folder().root_path();
    const fs::path before = fs::current_path();
    fs::current_path(current);
    fs::remove("device-uuid");
    UuidIn(root);
    EXPECT_FALSE(fs::exists("device-uuid"));
    fs::current_path(before);
    std::error_code ignored;
    fs::remove(root / "device-uuid", ignored);
}

TEST(ParamStoreSystemUuid, AFileThatAnotherProgramHoldsIsNeverReplaced) {
    fs::remove_all(Folder());
    const std::wstring kept = UuidIn(Folder() / "held");
    const fs::path file = UuidFile(Folder() / "held");
    const struct {
        const char* name;
        std::chrono::milliseconds held;
        bool read;
    } rows[] = {{"for a moment", std::chrono::milliseconds(300), true},
                {"for longer than anybody waits", std::chrono::milliseconds(4000), false}};
    for (const auto& row : rows) {
        UuidIn(Folder() / "other");
        const HANDLE handle = CreateFileW(file.wstring().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(handle, INVALID_HANDLE_VALUE) << row.name;
        std::thread holder([&] {
            std::this_thread::sleep_for(row.held);
            CloseHandle(handle);
        });
        const std::wstring uuid = UuidIn(Folder() / "held");
        const std::string fault = GlobalParamWrapper::GetInstance()->GetSystemUUidFault();
        holder.join();
        EXPECT_EQ(uuid == kept, row.read) << row.name;
        EXPECT_EQ(uuid.size(), 32U) << row.name;
        EXPECT_EQ(fault.find("device-uuid: cannot be read: system error 32") == std::string::npos, row.read) << fault;
        EXPECT_EQ(ReadFile(file), Narrow(kept)) << row.name;
    }
}
