#include <Logger.h>
#include <ParamStore.h>

#include <chrono>
#include <thread>

#include "Examination.h"
#include "Folder.h"

namespace conformance {

namespace {

namespace fs = std::filesystem;

std::wstring IdentityIn(const fs::path& folder) {
    std::string error;
    Require(GlobalParamWrapper::GetInstance()->LoadConfigurationText(
                "{\"stateFolder\":\"" + folder.generic_u8string() + "\"}", error),
            Shown(error));
    return GlobalParamWrapper::GetInstance()->GetSystemUUid();
}

std::string Fault() {
    return GlobalParamWrapper::GetInstance()->GetSystemUUidFault();
}

void RequireForm(const std::wstring& identity) {
    Require(identity.size() == 32 && identity.find_first_not_of(L"0123456789abcdef") == std::wstring::npos,
            "it is " + Shown(identity));
}

// The library's own file: which it is, it alone knows.
fs::path OnlyFileIn(const fs::path& folder) {
    fs::path file;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        Require(file.empty(), "the state folder has several files");
        file = entry.path();
    }
    Require(!file.empty(), "the state folder is empty");
    return file;
}

// Opens the file for itself alone for that long, and asks for the identity meanwhile.
std::wstring IdentityWhileHeld(const fs::path& file, const fs::path& elsewhere, int milliseconds) {
    IdentityIn(elsewhere);
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    Require(handle != INVALID_HANDLE_VALUE, "its file cannot be opened");
    std::thread holder([&] {
        Sleep(static_cast<DWORD>(milliseconds));
        CloseHandle(handle);
    });
    std::wstring identity;
    try {
        identity = IdentityIn(file.parent_path());
    } catch (...) {
        holder.join();
        throw;
    }
    const std::string fault = Fault();
    holder.join();
    Require(fault.empty() == (milliseconds < 1000), "GetSystemUUidFault says " + Shown(fault));
    return identity;
}

void ExamineFile(Examination& examination) {
    examination.Point("a file that another program holds for a moment is waited for", [] {
        const Folder folder(L"identity");
        const std::wstring identity = IdentityIn(folder / L"a");
        RequireEqual(IdentityWhileHeld(OnlyFileIn(folder / L"a"), folder / L"b", 300), identity, "the identity");
    });
    examination.Point("a file that is held for long is left as it is; the process has an identity of its own", [] {
        const Folder folder(L"identity");
        const std::wstring kept = IdentityIn(folder / L"a");
        const fs::path file = OnlyFileIn(folder / L"a");
        const std::string text = TextOf(file);
        const std::wstring own = IdentityWhileHeld(file, folder / L"b", 4000);
        RequireForm(own);
        Require(own != kept, "the stored one, although it could not be read");
        RequireEqual(TextOf(file), text, "the file afterwards");
    });
    examination.Point("a damaged file is replaced", [] {
        const Folder folder(L"identity");
        IdentityIn(folder / L"a");
        const fs::path file = OnlyFileIn(folder / L"a");
        IdentityIn(folder / L"b");
        WriteText(file, "no identity");
        const std::wstring made = IdentityIn(folder / L"a");
        RequireForm(made);
        IdentityIn(folder / L"b");
        RequireEqual(IdentityIn(folder / L"a"), made, "the identity at the next look");
    });
    examination.Point("without a folder that can be written the identity lasts for the process, and the fault is named",
                      [] {
                          const Folder folder(L"identity");
                          WriteText(folder / L"file", "");
                          const std::wstring identity = IdentityIn(folder / L"file" / L"sub");
                          RequireForm(identity);
                          RequireEqual(GlobalParamWrapper::GetInstance()->GetSystemUUid(), identity, "a second look");
                          Require(!Fault().empty(), "GetSystemUUidFault is empty");
                      });
}

struct Token {
    const char* name;
    void (GlobalParamWrapper::*set)(const std::wstring&);
};

void ExamineMasking(Examination& examination) {
    for (const Token& token : {Token{"the access token", &GlobalParamWrapper::SetCurrentAt},
                               Token{"the refresh token", &GlobalParamWrapper::SetCurrentRt},
                               Token{"the application token", &GlobalParamWrapper::SetAppAT}}) {
        examination.Point(std::string("no log line shows ") + token.name, [&token] {
            const Folder folder(L"masking");
            LoggerSettings settings;
            settings.file = (folder / L"client.log").wstring();
            std::string error;
            Require(Logger::Configure(settings, error), Shown(error));
            (GlobalParamWrapper::GetInstance()->*token.set)(L"CANARY-of-the-store");
            Logger::Output(10, kSeverityFailure, 1, "Conformance", L"before CANARY-of-the-store behind", true);
            Logger::Shutdown();
            (GlobalParamWrapper::GetInstance()->*token.set)(L"");
            const std::string text = TextOf(folder / L"client.log");
            Require(text.find("before") != std::string::npos, "the line is not there");
            Require(text.find("CANARY") == std::string::npos, "the line is " + Shown(text));
        });
    }
}

}  // namespace

void ExamineStoredIdentity(Examination& examination) {
    examination.Point("the system UUID has 32 lower-case hexadecimal digits and stays", [] {
        const Folder folder(L"identity");
        const std::wstring identity = IdentityIn(folder / L"a");
        RequireForm(identity);
        RequireEqual(GlobalParamWrapper::GetInstance()->GetSystemUUid(), identity, "a second look");
        RequireEqual(Fault(), std::string(), "GetSystemUUidFault");
    });
    examination.Point("the system UUID is kept in the state folder, and each folder has its own", [] {
        const Folder folder(L"identity");
        const std::wstring first = IdentityIn(folder / L"a");
        Require(IdentityIn(folder / L"b") != first, "one identity in two folders");
        RequireEqual(IdentityIn(folder / L"a"), first, "the identity of the first folder");
    });
    ExamineFile(examination);
    ExamineMasking(examination);
}

}  // namespace conformance
