#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/FileDescriptor.h"

#include <fcntl.h>

/// Grants one folder, for as long as the bench wants. Any thread.
class FolderAccess final : public FileAccess
{
public:
    explicit FolderAccess(const FileUrl &folder) : m_folder(folder)
    {
        FileDescriptor opened(
            ::open(folder.path().constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (opened.isValid())
            m_anchor = std::make_shared<const FileDescriptor>(std::move(opened));
    }

    bool isOpen() const { return m_anchor != nullptr; }

    void startAccessing() override {}
    void stopAccessing() override {}
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        const QByteArray folder = m_folder.path();
        const QByteArray inside = folder == "/" ? folder : folder + '/';
        if (m_anchor && url == m_folder)
            return AnchoredPath{m_anchor, {}};
        if (!m_anchor || !url.path().startsWith(inside))
            return std::nullopt;
        return AnchoredPath{m_anchor, url.path().sliced(inside.size())};
    }
    std::optional<FileUrl> grantedFolder() const override { return m_folder; }

private:
    const FileUrl m_folder;
    std::shared_ptr<const FileDescriptor> m_anchor;
};
