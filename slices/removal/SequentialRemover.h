#pragma once

#include "platform/system/FileDescriptor.h"
#include "slices/removal/RemovalSteps.h"

#include <stop_token>

/// A folder that is held open while its entries are dealt with.
struct HeldFolder
{
    int descriptor = -1;
    QByteArray path; ///< raw, with a trailing slash
    EntryPolicy policy = EntryPolicy::Removed;
};

/// Removes trees one entry after the other, on one thread. Needs a fixed number of descriptors and
/// no stack, however deep a tree is: it holds only the innermost few folders on the way down open.
/// It goes back to the others by "..", and checks them by what it remembers of them.
class SequentialRemover final
{
public:
    SequentialRemover(const RemovalSteps &steps, std::stop_token stop);

    /// Removes what the listing names in the folder, with all that it holds. Returns whether all is
    /// gone. A stop takes effect before the next entry; the folders on the way down then have their
    /// own rights again.
    bool removeListed(const HeldFolder &folder, FolderListing listing);

private:
    /// A folder on the way down. The outermost is the caller's, who holds it open.
    struct Level
    {
        FileDescriptor descriptor;
        std::uint64_t inode = 0;
        FolderListing listing;
        std::size_t next = 0;
        qsizetype pathSize = 0;
        EntryPolicy policy = EntryPolicy::Removed;
        bool stays = false; ///< something in it was left, or it is on the way to what is kept
        std::optional<std::uint16_t> formerRights;
    };

    void step();
    void enter(const EntryRef &ref, EntryPolicy policy);
    void leave();
    void leaveAll();
    bool reopen(Level &level, const Level &inner);
    void abandonClosedLevels(int error);
    void closeOuterLevel();
    int descriptorOf(const Level &level) const;
    EntryRef refIn(const Level &level, std::size_t index) const;

    const RemovalSteps &m_steps;
    std::stop_token m_stop;
    std::vector<char> m_space;
    std::vector<Level> m_levels;
    int m_startDescriptor = -1;
    std::size_t m_firstOpen = 1; ///< the levels from here on, and the outermost, are open
    QByteArray m_path;
};
