#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

struct HWND__;

// Recording stand-ins of the suite's classes: a library of its own, so that the service's objects import from it
// exactly what they import from the real suite.

#if defined(STANDINS_BUILD)
#define STANDINS_API __declspec(dllexport)
#else
#define STANDINS_API __declspec(dllimport)
#endif

struct ScriptedReply {
    int code = 200;
    std::string body;
    std::map<std::string, std::string> headers;
};

struct SuiteRecording {
    // Every call in its order, one UTF-8 line each: "log <module> <severity> <tag> <message>", "event <a> <b> <c>" with
    // " <name>=<value>" of extra information, "store <setter> <value>", "http <call> <value>", "hub <event>".
    std::vector<std::string> journal;
    // Answers of the next exchanges; when none is left an exchange ends with -3.
    std::vector<ScriptedReply> replies;
    // Answers by URL, for exchanges on several threads at once; they go before the others and are never used up.
    std::map<std::wstring, ScriptedReply> repliesByUrl;
    // Runs in the middle of each exchange, with the strategy's log functions still to be called.
    std::function<void(const std::wstring& url)> duringExchange;
    // Runs when the main window is asked for, which a portrait download does last of all.
    std::function<void()> onMainWindowAsked = [] {};
    // Runs inside each push to the store.
    std::function<void()> duringPush = [] {};

    std::map<std::wstring, std::wstring> requestHeaders;  // of the last exchange
    std::wstring postData;
    std::wstring url;

    // What the three-value SetHeaders makes.
    std::map<std::wstring, std::wstring> standardHeaders = {{L"standard", L"set"}};

    std::wstring appDataFolder;
    std::wstring legacyItem;
    HWND__* mainWindow = nullptr;

    // Log lines outside the HTTP hooks, events and pushes since the last call, with trace ids cut out of URLs.
    STANDINS_API std::vector<std::string> TakeOutcome();

    // Lines that start with the given word.
    STANDINS_API std::vector<std::string> Lines(const std::string& word) const;
};

// The one recording; tests reset it in their fixture.
STANDINS_API SuiteRecording& Recording();
