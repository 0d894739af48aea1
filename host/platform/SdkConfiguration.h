#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "system/WindowsHandle.h"

namespace host {

// The account SDK's configuration file with a "platform_url" of ours while this lives: from before the SDK is
// initialised, which is when it reads the file, until afterwards. A missing "client_id" or file is added; other members
// and comments stay; at last the file is what it was, unless the program was killed meanwhile. Programs started at once
// share it: each waits for its turn. To be destroyed on the thread that made it.
class SdkConfiguration {
public:
    // Throws HostError when the file holds something else or cannot be read or written, or when the turn does not come
    // in 30 s.
    SdkConfiguration(std::filesystem::path file, const std::string& platformUrl);
    ~SdkConfiguration();

    // Puts the file back, once; false when that failed. The destructor does it otherwise.
    bool Restore();

    SdkConfiguration(const SdkConfiguration&) = delete;
    SdkConfiguration& operator=(const SdkConfiguration&) = delete;

private:
    // Holds the mutex of all programs of this login session.
    class Turn {
    public:
        Turn();
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        WindowsHandle m_mutex;
    };

    const Turn m_turn;  // first: the file is restored before it ends
    const std::filesystem::path m_file;
    const std::optional<std::string> m_before;  // nothing when there was no file
    bool m_changed = false;
};

}  // namespace host
