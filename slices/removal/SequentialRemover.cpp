#include "slices/removal/SequentialRemover.h"

#include <cerrno>
#include <new>

namespace {

using EntryOutcome = RemovalSteps::EntryOutcome;

/// Small enough that two removers, the standard streams and the anchors fit into 64 descriptors.
constexpr std::size_t kOpenLevels = 12;

} // namespace

SequentialRemover::SequentialRemover(const RemovalSteps &steps, std::stop_token stop)
    : m_steps(steps),
      m_stop(std::move(stop)),
      m_space(kListingSpace),
      m_slot(steps.slot(AsideSlot::FolderUse::Alone))
{
}

bool SequentialRemover::removeListed(const HeldFolder &folder, FolderListing listing)
{
    start(folder, std::move(listing));
    try {
        removeAll();
    } catch (const std::bad_alloc &) {
        m_levels.front().stays = true;
        m_steps.ranOutOfMemory(folder.path);
    }
    leaveAll();
    emptySlot();
    const bool isAllGone = isDone() && !m_levels.front().stays;
    m_levels.clear();
    return isAllGone;
}

void SequentialRemover::start(const HeldFolder &folder, FolderListing listing)
{
    m_startDescriptor = folder.descriptor;
    m_path = folder.path;
    m_firstOpen = 1;
    m_levels.clear();
    m_way = folder.way;
    m_emptied = folder.emptied;
    m_levels.push_back({{},
                        folder.way.inode,
                        std::move(listing),
                        0,
                        m_path.size(),
                        folder.policy,
                        false,
                        folder.state,
                        {}});
}

bool SequentialRemover::isDone() const
{
    return m_levels.size() == 1 && m_levels.front().next == m_levels.front().listing.size();
}

void SequentialRemover::removeAll()
{
    while (!isDone() && !m_stop.stop_requested()) {
        if (m_placeCheck.isDue())
            checkPlace();
        else
            step();
    }
}

void SequentialRemover::step()
{
    Level &level = m_levels.back();
    if (level.next == level.listing.size()) {
        leave();
        return;
    }
    const std::size_t index = level.next++;
    const EntryRef ref = refIn(level, index);
    const FolderListing::Entry &entry = level.listing.at(index);
    const EntryOutcome outcome = m_steps.deal(ref, entry, level.policy);
    if (outcome == EntryOutcome::Stays) {
        level.stays = true;
        m_placeCheck.hurry();
    } else if (outcome == EntryOutcome::Enter) {
        enter(ref, entry);
    }
}

void SequentialRemover::enter(const EntryRef &ref, const FolderListing::Entry &entry)
{
    emptySlot();
    auto entered = m_steps.enter(ref, entry, m_space);
    if (!entered) {
        if (entered.error() == EntryOutcome::Stays)
            m_levels.back().stays = true;
        return;
    }
    m_path += ref.name;
    m_path += '/';
    m_levels.push_back({std::move(entered->descriptor), entered->inode, std::move(entered->listing),
                        0, m_path.size(), EntryPolicy::Removed, false, entered->state,
                        std::move(entered->rights)});
    closeOuterLevel();
}

/// What was moved away with a folder is no longer part of the cleaning.
void SequentialRemover::checkPlace()
{
    Level &level = m_levels.back();
    std::vector<std::uint64_t> inside;
    for (std::size_t i = m_levels.size() - 1; i > 1; --i)
        inside.push_back(m_levels[i - 1].inode);
    const FolderWay *const around = m_levels.size() == 1 ? m_way.around : &m_way;
    const bool isInPlace = m_steps.isInPlace(descriptorOf(level), inside, around);
    m_placeCheck.done();
    if (isInPlace)
        return;
    m_steps.abandon(m_path.chopped(1), ESTALE);
    level.next = level.listing.size();
    level.stays = true;
}

void SequentialRemover::emptySlot()
{
    if (m_steps.emptySlot(m_slot, m_path) == EntryOutcome::Stays)
        m_levels.back().stays = true;
}

void SequentialRemover::leave()
{
    emptySlot();
    Level inner = std::move(m_levels.back());
    m_levels.pop_back();
    Level &outer = m_levels.back();
    m_path.truncate(outer.pathSize);
    inner.rights.giveBack();
    const auto reopened = reopen(outer, inner);
    inner.descriptor.reset();
    if (!reopened || inner.stays || !removesEmptied(inner))
        outer.stays = true;
    m_steps.tellOfRights(refIn(outer, outer.next - 1), inner.rights);
    if (!reopened)
        abandonClosedLevels(reopened.error());
}

/// Whether a folder that is empty now is gone, or is removed later.
bool SequentialRemover::removesEmptied(Level &inner)
{
    Level &outer = m_levels.back();
    const EntryRef ref = refIn(outer, outer.next - 1);
    if (!m_emptied || m_levels.size() > 1)
        return m_steps.removeFolder(ref, inner.inode, inner.rights) == EntryOutcome::Gone;
    m_emptied->add({ref.name, inner.inode, std::move(inner.rights)});
    return true;
}

/// The cleaning was stopped, or is at its end anyway.
void SequentialRemover::leaveAll()
{
    while (m_levels.size() > 1) {
        m_levels.back().stays = true;
        if (m_levels.back().descriptor.isValid())
            leave();
        else
            abandonClosedLevels(ESTALE);
    }
}

SystemResult<void> SequentialRemover::reopen(Level &level, const Level &inner)
{
    const std::size_t index = m_levels.size() - 1;
    if (index == 0 || level.descriptor.isValid())
        return {};
    auto descriptor = m_steps.back(inner.descriptor.get(), level.inode);
    if (!descriptor)
        return tl::unexpected(descriptor.error());
    level.descriptor = std::move(*descriptor);
    level.rights.folderIsOpenAs(level.descriptor.get());
    m_firstOpen = index;
    return {};
}

/// All levels but the outermost are closed, and the way back to them is lost.
void SequentialRemover::abandonClosedLevels(int error)
{
    giveBackFromAbove();
    const QByteArray path = m_path.first(m_levels[1].pathSize - 1);
    tellOfClosedLevels();
    m_levels.resize(1);
    m_levels.front().stays = true;
    m_firstOpen = 1;
    m_steps.abandon(path, error);
}

/// Those of the closed levels that are still in their places can be reached from the outermost.
void SequentialRemover::giveBackFromAbove()
{
    for (std::size_t i = 1; i < m_levels.size(); ++i) {
        const Level &outer = m_levels[i - 1];
        Level &level = m_levels[i];
        auto opened = m_steps.reenter(refIn(outer, outer.next - 1), level.inode);
        if (!opened)
            return;
        level.rights.folderIsOpenAs(opened->get());
        level.rights.giveBack();
        level.descriptor = std::move(*opened);
        m_levels[i - 1].descriptor.reset(); // there may be thousands
    }
}

/// From the inside out.
void SequentialRemover::tellOfClosedLevels()
{
    for (std::size_t i = m_levels.size() - 1; i > 0; --i) {
        const Level &outer = m_levels[i - 1];
        m_path.truncate(outer.pathSize);
        m_steps.tellOfRights(refIn(outer, outer.next - 1), m_levels[i].rights);
    }
}

void SequentialRemover::closeOuterLevel()
{
    if (m_levels.size() - m_firstOpen > kOpenLevels)
        m_levels[m_firstOpen++].close();
}

int SequentialRemover::descriptorOf(const Level &level) const
{
    return &level == &m_levels.front() ? m_startDescriptor : level.descriptor.get();
}

EntryRef SequentialRemover::refIn(const Level &level, std::size_t index)
{
    return {descriptorOf(level), m_path, level.listing.name(level.listing.at(index)), level.state,
            &m_slot};
}
