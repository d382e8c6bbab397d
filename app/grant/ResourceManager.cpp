#include "app/grant/ResourceManager.h"

#include "platform/base/Indestructible.h"

#include <atomic>
#include <utility>

namespace {

/// The path of `url` seen from `folder`; nothing when it does not lie there.
std::optional<QByteArray> pathBelow(const FileUrl &folder, const FileUrl &url)
{
    const QByteArray path = url.path();
    if (path == folder.path())
        return QByteArray();
    const QByteArray prefix = folder.path() + '/';
    if (!path.startsWith(prefix) || hasDotComponent(path))
        return std::nullopt;
    return path.mid(prefix.size());
}

} // namespace

/// The one resolved grant.
class ResourceManager::Home final : public FileAccess
{
public:
    explicit Home(Finding found)
        : m_grant(std::move(found.grant)), m_folder(std::move(found.folder))
    {
    }

    const QByteArray &grant() const { return m_grant; }
    const FileUrl &url() const { return m_folder.url; }
    int accessCount() const { return m_accessCount; }

    void startAccessing() override { ++m_accessCount; }

    void stopAccessing() override
    {
        [[maybe_unused]] const int before = m_accessCount--;
        Q_ASSERT_X(before > 0, "ResourceManager", "stopped accessing more often than started");
    }

    std::optional<AnchoredPath> anchoredPath(const FileUrl &fileUrl) const override
    {
        Q_ASSERT_X(m_accessCount > 0, "ResourceManager", "file work without access");
        const std::optional<QByteArray> stored = storedGrant();
        if (stored && *stored != m_grant)
            return std::nullopt;
        const std::optional<QByteArray> below = pathBelow(m_folder.url, fileUrl);
        if (!below)
            return std::nullopt;
        return AnchoredPath{m_folder.folder, *below};
    }

    std::optional<FileUrl> grantedFolder() const override { return m_folder.url; }

private:
    const QByteArray m_grant;
    const GrantedFolder m_folder;
    std::atomic<int> m_accessCount = 0;
};

ResourceManager::Run::Run() = default;
ResourceManager::Run::~Run() = default;

std::unique_ptr<ResourceManager::Run> &ResourceManager::currentRun()
{
    static const Indestructible<std::unique_ptr<Run>> run(std::make_unique<Run>());
    return *run;
}

void ResourceManager::setGrantSource(GrantSource source, const SystemCalls &calls)
{
    Run &run = *currentRun();
    run.source = std::move(source);
    {
        const std::scoped_lock lock(run.mutex);
        run.sourceThread = std::this_thread::get_id();
        run.calls = &calls;
    }
    storedGrant();
}

std::optional<QByteArray> ResourceManager::storedGrant()
{
    Run &run = *currentRun();
    {
        const std::scoped_lock lock(run.mutex);
        if (std::this_thread::get_id() != run.sourceThread)
            return run.stored;
    }
    std::optional<QByteArray> stored = run.source();
    const std::scoped_lock lock(run.mutex);
    return run.stored = std::move(stored);
}

/// Asks the file system, and blocks no other thread meanwhile.
tl::expected<ResourceManager::Finding, GrantFailure>
ResourceManager::find(const std::optional<QByteArray> &grant)
{
    if (!grant)
        return tl::unexpected(GrantFailure::Missing);
    Run &run = *currentRun();
    const SystemCalls &calls = [&run]() -> const SystemCalls & {
        const std::scoped_lock lock(run.mutex);
        return *run.calls;
    }();
    return resolveGrant(calls, *grant).map([&grant](GrantedFolder folder) {
        return Finding{*grant, std::move(folder)};
    });
}

std::optional<GrantFailure> ResourceManager::check(const std::optional<QByteArray> &grant)
{
    auto finding = find(grant);
    if (!finding)
        return finding.error();
    std::optional<Finding> found = std::move(*finding); // later the one before, closed unlocked
    Run &run = *currentRun();
    const std::scoped_lock lock(run.mutex);
    if (!run.home && run.stored == grant) // a late answer may be about an old grant
        run.found.swap(found);
    return std::nullopt;
}

/// What the last check found, if it was about this grant; otherwise what is found now.
tl::expected<ResourceManager::Finding, GrantFailure>
ResourceManager::findingOf(const QByteArray &grant)
{
    Run &run = *currentRun();
    std::optional<Finding> found;
    {
        const std::scoped_lock lock(run.mutex);
        run.found.swap(found);
    }
    if (found && found->grant == grant)
        return std::move(*found);
    return find(grant);
}

bool ResourceManager::isInForceFor(const QByteArray &grant)
{
    Run &run = *currentRun();
    const std::scoped_lock lock(run.mutex);
    return !run.home || run.home->grant() == grant;
}

ResourceManager::Home &ResourceManager::home()
{
    Run &run = *currentRun();
    std::call_once(run.once, [&run] {
        const std::optional<QByteArray> stored = storedGrant();
        if (!stored)
            qFatal("the home folder is used before it was granted");
        auto found = findingOf(*stored);
        if (!found)
            qFatal("the home folder is used without a valid grant: %s", nameOf(found.error()));
        const std::scoped_lock lock(run.mutex);
        run.home = std::make_unique<Home>(std::move(*found));
    });
    return *run.home;
}

FileUrl ResourceManager::homeFolder()
{
    storedGrant(); // the pages ask from the main thread, so workers know the present grant
    return home().url();
}

void ResourceManager::startAccessing()
{
    home().startAccessing();
}

void ResourceManager::stopAccessing()
{
    home().stopAccessing();
}

FileAccess &ResourceManager::access()
{
    // Handed out at start-up, before anything is granted: the folder is resolved when it is used.
    class LateAccess final : public FileAccess
    {
    public:
        void startAccessing() override { ResourceManager::startAccessing(); }
        void stopAccessing() override { ResourceManager::stopAccessing(); }
        std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
        {
            return home().anchoredPath(url);
        }
        std::optional<FileUrl> grantedFolder() const override { return home().grantedFolder(); }
    };
    static const Indestructible<LateAccess> access;
    return *access;
}

int ResourceManager::accessCount()
{
    return home().accessCount();
}
