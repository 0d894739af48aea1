#pragma once

#include <filesystem>

struct HINSTANCE__;

namespace host {

// File of a loaded module; null: of this program.
std::filesystem::path ModuleFile(HINSTANCE__* module);
// Folder of this program's file.
std::filesystem::path ProgramFolder();

// A folder of this process's own under the system's temporary folder, made empty and deleted with its content.
class TemporaryFolder {
public:
    // Its name is random, and never one that is there already. Throws HostError with kExitStepFailed, or
    // std::filesystem::filesystem_error.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace host
