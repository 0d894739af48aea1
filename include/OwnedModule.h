#pragma once

#include <memory>

// A module handle as the platform's own headers declare it, without including them.
struct HINSTANCE__;

// Frees a loaded library.
struct ModuleRelease {
    void operator()(HINSTANCE__* module) const noexcept;
};
using OwnedModule = std::unique_ptr<HINSTANCE__, ModuleRelease>;
