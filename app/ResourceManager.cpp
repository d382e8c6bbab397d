#include "app/ResourceManager.h"

#include <atomic>

namespace {

bool hasDotComponent(const QByteArray &path)
{
    const QList<QByteArray> names = path.split('/');
    return names.contains(".") || names.contains("..");
}

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
    Home(QByteArray grant, GrantedFolder folder)
        : m_grant(std::move(grant)), m_folder(std::move(folder))
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

private:
    const QByteArray m_grant;
    const GrantedFolder m_folder;
    std::atomic<int> m_accessCount = 0;
};

ResourceManager::Run::Run() = default;
ResourceManager::Run::~Run() = default;

std::unique_ptr<ResourceManager::Run> &ResourceManager::currentRun()
{
    static auto run = std::make_unique<Run>();
    return run;
}

void ResourceManager::setGrantSource(GrantSource source)
{
    Run &run = *currentRun();
    run.source = std::move(source);
    run.sourceThread = std::this_thread::get_id();
    storedGrant();
}

std::optional<QByteArray> ResourceManager::storedGrant()
{
    Run &run = *currentRun();
    if (std::this_thread::get_id() != run.sourceThread) {
        const std::scoped_lock lock(run.mutex);
        return run.stored;
    }
    std::optional<QByteArray> stored = run.source();
    const std::scoped_lock lock(run.mutex);
    return run.stored = std::move(stored);
}

std::optional<GrantFailure> ResourceManager::checkStoredGrant()
{
    const std::optional<QByteArray> stored = storedGrant();
    if (!stored)
        return GrantFailure::Missing;
    const auto folder = resolveGrant(hostSystemCalls(), *stored);
    return folder ? std::nullopt : std::optional(folder.error());
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
        auto folder = resolveGrant(hostSystemCalls(), *stored);
        if (!folder)
            qFatal("the home folder is used without a valid grant: %s", nameOf(folder.error()));
        const std::scoped_lock lock(run.mutex);
        run.home = std::make_unique<Home>(*stored, std::move(*folder));
    });
    return *run.home;
}

FileUrl ResourceManager::homeFolder()
{
    storedGrant(); // the pages ask from the main thread: workers then know what is granted now
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
    };
    static LateAccess access;
    return access;
}

int ResourceManager::accessCount()
{
    return home().accessCount();
}
