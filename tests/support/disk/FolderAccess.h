#pragma once

#include "platform/files/FileAccess.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <atomic>

/// Stands for the granted home: the right to work in one folder, without a grant. Counts its calls;
/// any thread. The destructor waits for the background threads that may still use it.
class FolderAccess : public FileAccess
{
public:
    /// When it tells where something is.
    enum class Answers { Always, WhileAccessed };

    explicit FolderAccess(const QByteArray &folder, Answers answers = Answers::Always)
        : m_folder(folder),
          m_anchor(std::make_shared<const FileDescriptor>(openedFolder(folder))),
          m_answers(answers)
    {
    }
    /// Access to a folder that is already open, whatever rights this process has.
    FolderAccess(const QByteArray &folder, std::shared_ptr<const FileDescriptor> anchor,
                 Answers answers)
        : m_folder(folder), m_anchor(std::move(anchor)), m_answers(answers)
    {
    }
    ~FolderAccess() override { awaitBackgroundThreads(); }

    int starts() const { return m_starts; }
    int stops() const { return m_stops; }
    /// How many times it is held now.
    int count() const { return m_starts - m_stops; }

    void startAccessing() override { ++m_starts; }
    void stopAccessing() override { ++m_stops; }
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        if (m_answers == Answers::WhileAccessed && m_starts <= m_stops)
            return std::nullopt;
        if (url.path() == m_folder)
            return AnchoredPath{m_anchor, {}};
        if (!url.path().startsWith(m_folder + '/'))
            return std::nullopt;
        return AnchoredPath{m_anchor, url.path().sliced(m_folder.size() + 1)};
    }

    std::optional<FileUrl> grantedFolder() const override
    {
        return FileUrl::fromPath(m_folder, FileUrlKind::Folder);
    }

    /// URLs of what lies in the folder.
    FileUrl folder(const QByteArray &relative) const
    {
        return FileUrl::fromPath(m_folder + '/' + relative, FileUrlKind::Folder);
    }
    FileUrl file(const QByteArray &relative) const
    {
        return FileUrl::fromPath(m_folder + '/' + relative, FileUrlKind::File);
    }

private:
    QByteArray m_folder;
    std::shared_ptr<const FileDescriptor> m_anchor;
    Answers m_answers;
    std::atomic<int> m_starts = 0;
    std::atomic<int> m_stops = 0;
};
