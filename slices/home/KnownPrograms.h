#pragma once

#include <QString>
#include <array>
#include <cstddef>
#include <span>

/// How a program keeps its profiles, and how a profile is locked while the program runs.
enum class ProgramFamily {
    Chromium, ///< all profiles lie in one folder, under one lock
    Firefox,  ///< each profile has a lock of its own
    Other,    ///< its profiles are unknown; only the process list tells that it runs
};

/// Whether it is known which files of a program's profiles may be removed.
enum class ProfileFiles { Known, Unknown };

/// A program in a Flatpak sandbox.
struct FlatpakEdition
{
    enum class Profiles { AsOutside, Unknown };

    const char *id = nullptr;
    Profiles profiles = Profiles::AsOutside;
};

/// A program in a snap.
struct SnapEdition
{
    const char *name = nullptr;
    const char *profiles = nullptr; ///< below the snap's folder "common"; null: unknown
    ProfileFiles files = ProfileFiles::Known;
};

/// An edition of a program that people run beside the usual one. Its processes have the same names.
struct ProgramChannel
{
    const char *name = nullptr;
    const char *folder = nullptr; ///< in the folders of settings and of caches
};

/// All that is known of one browser or mail program that has something to lose while it runs. The
/// locations in a home follow from it, as do the sentences that name programs.
struct KnownProgram
{
    template <typename Value> using UpTo = std::array<Value, 4>; ///< unused values are null

    const char *name = nullptr; ///< for people
    ProgramFamily family = ProgramFamily::Other;
    ProfileFiles files = ProfileFiles::Unknown;
    const char *homeProfiles = nullptr;   ///< the folder of its profiles, in the home
    const char *configProfiles = nullptr; ///< the same, in the folder of settings
    const char *cache = nullptr;          ///< the name in the folder that holds all caches
    UpTo<ProgramChannel> channels{};
    UpTo<FlatpakEdition> flatpaks{};
    SnapEdition snap{};
    UpTo<const char *> processes{}; ///< whole names
    /// Further names of the processes, which only the sandboxed program has for certain.
    UpTo<const char *> sandboxProcesses{};
};

/// A mail program that puts attachments into a folder to have them opened.
struct KnownMailProgram
{
    const char *name; ///< for people
    const char *process;
    const char *attachments; ///< in the home; never a store of mail
};

/// In the order in which texts name them. Immutable; any thread.
std::span<const KnownProgram> knownPrograms();
std::span<const KnownMailProgram> knownMailPrograms();

/// The text with "{browsers}" and "{mail programs}" replaced by the names of those whose files are
/// cleaned, and "{chromiums}" by the number of the browsers that are of the Chromium family, in
/// words.
QString withProgramNames(QString text);
