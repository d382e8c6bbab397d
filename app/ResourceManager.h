#pragma once

#include "platform/FolderGrant.h"
#include "slices/FileAccess.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

/// The home folder that the user granted, resolved once: at the first call of homeFolder(),
/// startAccessing() or stopAccessing(), from then on for the rest of the run. Any thread.
///
/// Using it without a valid grant ends the program, because any answer would be somebody else's
/// folder. So ask checkStoredGrant() and isInForceFor() first: before the first page that works
/// with files is shown, and before cleaning.
class ResourceManager final
{
public:
    /// Reads the stored grant; nothing when none is stored. Called only on the thread that set it,
    /// because settings are not for other threads: whenever something is asked here from that
    /// thread. All others go by what was read last.
    using GrantSource = std::function<std::optional<QByteArray>()>;

    ResourceManager() = delete;

    /// Where the grant is stored. At start-up, on the main thread, before anything else here; again
    /// when the source goes away.
    static void setGrantSource(GrantSource source);

    /// Why the grant stored now cannot be used; nothing when it can. Changes nothing, and may be
    /// asked at any time.
    static std::optional<GrantFailure> checkStoredGrant();

    /// Whether work would be done in the folder that this grant names. False once another folder
    /// has been taken into use in this run: the new grant takes effect at the next start. Until
    /// then access() finds nothing, so that no work is done in a folder that the user no longer
    /// sees granted.
    static bool isInForceFor(const QByteArray &grant);

    static FileUrl homeFolder();

    /// Every piece of work below the home folder stands between one start and one stop (see
    /// AccessScope). Calls nest.
    static void startAccessing();
    static void stopAccessing();

    /// The same, for the engines; may be handed out before there is a grant. anchoredPath() knows
    /// the URLs at and below homeFolder(), compared by the bytes of their paths. Lives as long as
    /// the program.
    static FileAccess &access();

    /// How many starts have not been stopped yet.
    static int accessCount();

private:
    friend class ResourceManagerReset; // only tests have it: begins another run of the program

    class Home;

    /// What one run of the program keeps.
    struct Run
    {
        Run();
        ~Run();

        GrantSource source;
        std::thread::id sourceThread;
        std::once_flag once;
        std::mutex mutex; ///< guards the rest; `home` may be read without it once `once` is done
        std::optional<QByteArray> stored; ///< what the source said last
        std::unique_ptr<Home> home;
    };

    static std::unique_ptr<Run> &currentRun();
    static std::optional<QByteArray> storedGrant();
    static Home &home();
};
