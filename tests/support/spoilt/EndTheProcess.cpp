#include <windows.h>

#include "LocalFolders.h"

// For a store that ends the process, as if all were well, when it is first asked for a folder.
namespace suite {

std::wstring LocalAppDataFolder() { ExitProcess(0); }

}  // namespace suite
