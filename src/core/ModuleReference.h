#pragma once

#include "OwnedModule.h"

namespace userauth {

// Keeps this library in memory for a thread that runs its code.
class ModuleReference {
public:
    ModuleReference();
    ModuleReference(ModuleReference&&) = default;

    // Gives the reference back once the calling thread has ended: code of this library still runs after its last
    // statement. When that cannot be arranged the library stays loaded.
    void ReleaseWhenThisThreadHasEnded();

private:
    OwnedModule m_module;
};

}  // namespace userauth
