#pragma once

/// @file
/// A loaded library that is freed by its owner.

#include <memory>

/// A module handle as the platform's own headers declare it, without including them.
struct HINSTANCE__;

/// Frees a loaded library.
struct ModuleRelease {
    /// @param module  not null
    void operator()(HINSTANCE__* module) const noexcept;
};
/// Owns a loaded library; null: none.
using OwnedModule = std::unique_ptr<HINSTANCE__, ModuleRelease>;
