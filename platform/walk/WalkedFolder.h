#pragma once

#include "platform/system/FileStatus.h"

#include <QByteArray>
#include <atomic>
#include <cstdint>
#include <string_view>
#include <utility>

class WalkedFolderRef;

/// A folder that a walk entered: its name and the chain of folders above it up to where the walk
/// started, so that the path of anything found can be made when it is asked for. Never changes once
/// made; the chain lives as long as a WalkedFolderRef holds its lower end. A walk may be a hundred
/// thousand folders deep, so it keeps no more than visitors need, and the name right behind itself.
/// Any thread.
class WalkedFolder final
{
public:
    /// Null for the folder where the walk started.
    const WalkedFolder *parent() const { return m_parent; }
    /// The raw bytes of the name; empty for the folder where the walk started.
    std::string_view name() const
    {
        return {reinterpret_cast<const char *>(this + 1), m_nameLength};
    }
    /// Owner and permissions at the time when it was entered.
    std::uint32_t owner() const { return m_owner; }
    std::uint16_t permissions() const { return m_permissions; }

    /// The path of an entry of this folder relative to where the walk started; of the folder itself
    /// for an empty name. May be longer than any system call takes.
    QByteArray pathTo(std::string_view entryName) const;

private:
    friend class WalkedFolderRef;
    static const WalkedFolder *make(const WalkedFolder *parent, std::string_view name,
                                    const FileStatus &status);
    static void destroy(const WalkedFolder *folder);
    WalkedFolder(const WalkedFolder *parent, std::string_view name, const FileStatus &status);
    ~WalkedFolder() = default;

    const WalkedFolder *m_parent;
    mutable std::atomic<std::uint32_t> m_references{1};
    std::uint32_t m_owner;
    std::uint16_t m_permissions;
    std::uint16_t m_nameLength;
};

/// Keeps a WalkedFolder and all above it alive. Copies and moves; one reference belongs to one
/// thread at a time. Lets go of a chain of any length without recursion.
class WalkedFolderRef final
{
public:
    WalkedFolderRef() = default;
    /// The folder where a walk starts.
    static WalkedFolderRef start(const FileStatus &status);
    /// A folder below this one.
    WalkedFolderRef child(std::string_view name, const FileStatus &status) const;

    ~WalkedFolderRef() { release(m_folder); }
    WalkedFolderRef(const WalkedFolderRef &other) : m_folder(other.m_folder) { retain(m_folder); }
    WalkedFolderRef(WalkedFolderRef &&other) noexcept
        : m_folder(std::exchange(other.m_folder, nullptr))
    {
    }
    WalkedFolderRef &operator=(WalkedFolderRef other) noexcept
    {
        std::swap(m_folder, other.m_folder);
        return *this;
    }

    explicit operator bool() const { return m_folder != nullptr; }
    const WalkedFolder &operator*() const { return *m_folder; }
    const WalkedFolder *operator->() const { return m_folder; }

private:
    explicit WalkedFolderRef(const WalkedFolder *folder) : m_folder(folder) {}
    static void retain(const WalkedFolder *folder);
    static void release(const WalkedFolder *folder);

    const WalkedFolder *m_folder = nullptr;
};
