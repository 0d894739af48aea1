#pragma once

#include <Logger.h>
#include <gtest/gtest.h>

#include "TextFile.h"

// The logger with its files in a folder of the test.
class LoggerTest : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::remove_all(m_folder);
        Configure();
    }
    void TearDown() override {
        Logger::SetSecret("test", L"");
        Logger::Shutdown();
        std::filesystem::remove_all(m_folder);
    }
    void Configure(bool console = false, std::size_t maxFileBytes = 0, std::size_t maxFiles = 0) {
        LoggerSettings settings;
        settings.maxFileBytes = maxFileBytes;
        settings.maxFiles = maxFiles;
        settings.console = console;
        settings.consoleSeverity = kSeveritySummary;
        settings.file = (m_folder / L"client.log").wstring();
        std::string error;
        ASSERT_TRUE(Logger::Configure(settings, error)) << error;
    }
    static void Write(const std::wstring& message, int severity = kSeverityProgress, bool toFile = true) {
        Logger::Output(10, severity, 123, "UserAuthService::GetAccessTokenByRefrshToken", message, toFile);
    }
    std::string ReadBack(const wchar_t* name) const {
        EXPECT_TRUE(Logger::Flush(10000));
        return ReadFile(m_folder / name);
    }

    const std::filesystem::path m_folder = std::filesystem::temp_directory_path() / L"logs \u00E9\u4E2D";
};
