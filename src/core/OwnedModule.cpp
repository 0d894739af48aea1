#include "OwnedModule.h"

#include <windows.h>

void ModuleRelease::operator()(HINSTANCE__* module) const noexcept {
    FreeLibrary(module);
}
