#pragma once

#include "tests/slices/kit/CleaningKit.h"

/// Cleans the home of a KillHome as one might think of it first: what is kept is moved aside, all
/// else is removed, and what is kept comes back. A kill in between loses it, so the kills have to
/// find something here.
inline void cleanByMovingAside(const QByteArray &home)
{
    const auto folder = native(home + "/Downloads");
    const auto aside = native(home + "/kept");
    std::filesystem::rename(folder / "kept/inside", aside);
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "kept");
    std::filesystem::rename(aside, folder / "kept/inside");
}
