#include "text/Console.h"

#include <windows.h>

#include "text/TextEncoding.h"

namespace host {
namespace {

bool IsConsole(HANDLE handle, DWORD& mode) {
    return handle && GetConsoleMode(handle, &mode);
}

void WriteTo(DWORD standardHandle, const std::string& text) {
    const HANDLE handle = GetStdHandle(standardHandle);
    DWORD mode = 0;
    DWORD written = 0;
    if (IsConsole(handle, mode)) {
        const std::wstring wide = ToWide(text);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
    } else {
        WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }
}

}  // namespace

Console::Console() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    m_terminal = IsConsole(output, mode) && SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    m_colour = m_terminal && GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) <= 1;
}

std::size_t Console::Width() const {
    CONSOLE_SCREEN_BUFFER_INFO buffer = {};
    const bool known = m_terminal && GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &buffer);
    return known ? static_cast<std::size_t>(buffer.srWindow.Right - buffer.srWindow.Left + 1) : 0;
}

void Console::Write(const std::string& text) {
    WriteTo(STD_OUTPUT_HANDLE, text);
}
void Console::WriteError(const std::string& text) {
    WriteTo(STD_ERROR_HANDLE, text);
}

}  // namespace host
