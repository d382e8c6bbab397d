#pragma once

#include "platform/system/FileDescriptor.h"
#include "slices/removal/HeldFolder.h"
#include "slices/removal/PlaceCheck.h"

#include <stop_token>

/// Removes trees one entry after the other, on one thread. Needs a fixed number of descriptors and
/// no stack, however deep a tree is: it holds only the innermost few folders on the way down open.
/// It goes back to the others by "..", and checks them by what it remembers of them. Every few
/// removals it checks that the folder still lies in its location: if not, what is left stays.
class SequentialRemover final
{
public:
    SequentialRemover(const RemovalSteps &steps, std::stop_token stop);

    /// Removes what the listing names in the folder, with all that it holds. Returns whether all is
    /// gone. A stop takes effect before the next entry; so does memory that runs out, which is
    /// reported. The folders on the way down then have their own rights again.
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
        bool stays = false; ///< something in it was left
        FolderState state = FolderState::Changed;
        LentRights rights = {};

        void close()
        {
            rights.folderIsClosed();
            descriptor.reset();
        }
    };

    void start(const HeldFolder &folder, FolderListing listing);
    bool isDone() const;
    void removeAll();
    void step();
    void enter(const EntryRef &ref, const FolderListing::Entry &entry);
    void checkPlace();
    void emptySlot();
    void leave();
    void leaveAll();
    bool removesEmptied(Level &inner);
    SystemResult<void> reopen(Level &level, const Level &inner);
    void abandonClosedLevels(int error);
    void giveBackFromAbove();
    void tellOfClosedLevels();
    void closeOuterLevel();
    int descriptorOf(const Level &level) const;
    EntryRef refIn(const Level &level, std::size_t index);

    const RemovalSteps &m_steps;
    std::stop_token m_stop;
    std::vector<char> m_space;
    std::vector<Level> m_levels;
    int m_startDescriptor = -1;
    FolderWay m_way; ///< of the outermost
    EmptiedFolders *m_emptied = nullptr;
    AsideSlot m_slot; ///< for the innermost
    PlaceCheck m_placeCheck;
    std::size_t m_firstOpen = 1; ///< the levels from here on, and the outermost, are open
    QByteArray m_path;
};
