#pragma once

#include "platform/files/FileAccess.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/Must.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

/// The grant of a scratch folder. Counts how it is used, and can make measurements wait at their
/// start. Any thread.
class ScratchAccess final : public FileAccess
{
public:
    explicit ScratchAccess(const ScratchFolder &folder)
        : m_root(folder.path()),
          m_descriptor(std::make_shared<const FileDescriptor>(openedFolder(m_root)))
    {
    }

    ~ScratchAccess() override { awaitBackgroundThreads(); }

    void startAccessing() override { ++m_starts; }
    void stopAccessing() override { ++m_stops; }
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        ++m_lookUps;
        std::unique_lock lock(m_mutex);
        m_opened.wait(lock, [this] { return m_isOpen; });
        if (!url.path().startsWith(m_root + '/'))
            return std::nullopt;
        return AnchoredPath{m_descriptor, url.path().mid(m_root.size() + 1)};
    }

    /// Makes measurements wait until release().
    void hold() { setOpen(false); }
    void release() { setOpen(true); }

    int lookUps() const { return m_lookUps; }
    int starts() const { return m_starts; }
    int stops() const { return m_stops; }

private:
    void setOpen(bool isOpen)
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_isOpen = isOpen;
        }
        m_opened.notify_all();
    }

    QByteArray m_root;
    std::shared_ptr<const FileDescriptor> m_descriptor;
    std::atomic<int> m_starts = 0;
    std::atomic<int> m_stops = 0;
    mutable std::atomic<int> m_lookUps = 0;
    mutable std::mutex m_mutex; ///< guards m_isOpen
    mutable std::condition_variable m_opened;
    bool m_isOpen = true;
};
