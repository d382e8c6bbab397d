#pragma once

#include "platform/files/FileUrl.h"
#include "platform/system/FileDescriptor.h"

#include <memory>
#include <optional>

/// A path below an open folder. All file work starts at the folder's descriptor: a change of the
/// folder's own path in the meantime cannot lead the work elsewhere. A value.
struct AnchoredPath
{
    std::shared_ptr<const FileDescriptor> anchor;
    QByteArray relativePath; ///< without leading slash; empty for the anchor itself
};

/// The right to work below the home folder that the user granted. Every piece of file work holds
/// it between one startAccessing() and one stopAccessing(); use AccessScope. Calls nest and may
/// come from any thread.
class FileAccess
{
public:
    virtual ~FileAccess() = default;

    virtual void startAccessing() = 0;
    virtual void stopAccessing() = 0;

    /// The path on which the engines find this URL; nothing when the URL does not lie in the
    /// granted folder.
    virtual std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const = 0;
    /// The granted folder, for which the anchored path is the anchor itself; nothing without one.
    virtual std::optional<FileUrl> grantedFolder() const { return std::nullopt; }
};

/// Holds the access as long as this object lives.
class AccessScope final
{
public:
    explicit AccessScope(FileAccess &access) : m_access(access) { m_access.startAccessing(); }
    ~AccessScope() { m_access.stopAccessing(); }
    AccessScope(const AccessScope &) = delete;
    AccessScope &operator=(const AccessScope &) = delete;

private:
    FileAccess &m_access;
};
