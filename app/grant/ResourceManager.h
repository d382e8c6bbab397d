#pragma once

#include "platform/files/FileAccess.h"
#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

/// The home folder that the user granted, resolved once: at the first call of homeFolder(),
/// startAccessing() or stopAccessing(), from then on for the rest of the run. Any thread.
///
/// Using it without a valid grant ends the program, because any answer would be a folder that was
/// not granted. So have the grant checked (see GrantCheck) and ask isInForceFor() first: before the
/// first page that works with files is shown, and before cleaning. A check keeps open the folder
/// that it found, for the first use of the same grant. That use then asks the file system nothing:
/// only checks wait for a disk.
class ResourceManager final
{
public:
    /// Reads the stored grant; nothing when none is stored. It is called only on the thread that
    /// set it, because settings are not for other threads, and whenever that thread asks something
    /// here. All other threads use what was read last.
    using GrantSource = std::function<std::optional<QByteArray>()>;

    ResourceManager() = delete;

    /// Sets where the grant is stored, and the calls by which its folder is found; they outlive
    /// every use. Call it at start-up, on the main thread, before anything else here, and again
    /// when the source goes away.
    static void setGrantSource(GrantSource source, const SystemCalls &calls = hostSystemCalls());

    /// The grant stored now. On a thread that may not ask the source: what the source said last.
    static std::optional<QByteArray> storedGrant();

    /// The reason why this grant cannot be used; nothing when it can. Takes nothing into use, and
    /// may be asked at any time. It makes a few system calls, which wait for as long as the disk
    /// does, so it is not for the main thread.
    static std::optional<GrantFailure> check(const std::optional<QByteArray> &grant);
    /// The same for the grant stored now.
    static std::optional<GrantFailure> checkStoredGrant() { return check(storedGrant()); }

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

    /// The same access, for the engines. It may be handed out before there is a grant.
    /// anchoredPath() knows the URLs at and below homeFolder(), compared by the bytes of their
    /// paths. Lives as long as the program.
    static FileAccess &access();

    /// How many starts have not been stopped yet.
    static int accessCount();

private:
    friend class ResourceManagerReset; // only tests have it: begins another run of the program

    class Home;

    /// A grant and the folder to which it was found to lead.
    struct Finding
    {
        QByteArray grant;
        GrantedFolder folder;
    };

    /// What one run of the program keeps.
    struct Run
    {
        Run();
        ~Run();

        GrantSource source; ///< used by sourceThread alone
        std::once_flag once;
        std::mutex mutex; ///< guards the rest; `home` may be read without it once `once` is done
        std::thread::id sourceThread;
        const SystemCalls *calls = &hostSystemCalls();
        std::optional<QByteArray> stored; ///< what the source said last
        std::optional<Finding> found;     ///< by the last check that found a folder
        std::unique_ptr<Home> home;
    };

    static std::unique_ptr<Run> &currentRun();
    static tl::expected<Finding, GrantFailure> find(const std::optional<QByteArray> &grant);
    static tl::expected<Finding, GrantFailure> findingOf(const QByteArray &grant);
    static Home &home();
};
