#include "core/Modules.h"

#include <gtest/gtest.h>

#include "ServiceFixture.h"

TEST(ModulePath, ParentDirectoryKeepsItsSeparator) {
    const struct {
        const wchar_t* path;
        bool found;
        const wchar_t* directory;
    } rows[] = {
        {L"C:\\dir\\file.dll", true, L"C:\\dir\\"},
        {L"C:\\dir\\", true, L"C:\\dir\\"},
        {L"C:/dir/file", true, L"C:/dir/"},
        {L"C:\\dir/file", true, L"C:\\dir/"},
        {L"file.dll", false, L"old"},
        {L"\\a", false, L"old"},
        {L"\\\\", true, L"\\\\"},
        {L"\\", false, L"old"},
        {L"", false, L"old"},
    };
    for (const auto& row : rows) {
        std::wstring directory = L"old";
        EXPECT_EQ(userauth::GetParentDirectory(row.path, directory), row.found) << row.path;
        EXPECT_EQ(directory, row.directory) << row.path;
    }
}

TEST(ModulePath, FindsTheFolderOfItsOwnModule) {
    EXPECT_EQ(std::filesystem::path(userauth::GetCurrentModuleDirectory()), ProgramFolder() / "");
}
