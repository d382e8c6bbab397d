#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/SystemCalls.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <atomic>

/// The right to work in one folder, without a grant.
class OpenAccess final : public FileAccess
{
public:
    explicit OpenAccess(const QByteArray &folder)
        : m_folder(folder),
          m_anchor(std::make_shared<FileDescriptor>(
              hostSystemCalls().openRoot(folder.constData()).value()))
    {
    }

    ~OpenAccess() override { awaitBackgroundThreads(); }

    void startAccessing() override { ++m_count; }
    void stopAccessing() override { --m_count; }
    int count() const { return m_count; }

    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        if (!url.path().startsWith(m_folder + '/'))
            return std::nullopt;
        return AnchoredPath{m_anchor, url.path().mid(m_folder.size() + 1)};
    }

private:
    QByteArray m_folder;
    std::shared_ptr<const FileDescriptor> m_anchor;
    std::atomic<int> m_count = 0;
};
