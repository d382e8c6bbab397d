#include "slices/removal/SequentialRemover.h"

namespace {

using EntryOutcome = RemovalSteps::EntryOutcome;

/// Small enough that two removers, the standard streams and the anchors fit into 64 descriptors.
constexpr std::size_t kOpenLevels = 12;

} // namespace

SequentialRemover::SequentialRemover(const RemovalSteps &steps, std::stop_token stop)
    : m_steps(steps), m_stop(std::move(stop)), m_space(kListingSpace)
{
}

bool SequentialRemover::removeListed(const HeldFolder &folder, FolderListing listing)
{
    m_startDescriptor = folder.descriptor;
    m_path = folder.path;
    m_firstOpen = 1;
    m_levels.clear();
    m_levels.push_back({{}, 0, std::move(listing), 0, m_path.size(), folder.policy, false, {}});
    const auto isDone = [this] {
        return m_levels.size() == 1 && m_levels.front().next == m_levels.front().listing.size();
    };
    while (!isDone()) {
        if (m_stop.stop_requested())
            break;
        step();
    }
    leaveAll();
    const bool isAllGone = isDone() && !m_levels.front().stays;
    m_levels.clear();
    return isAllGone;
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
    const RemovalSteps::Verdict verdict = m_steps.deal(ref, level.listing.at(index), level.policy);
    if (verdict.outcome == EntryOutcome::Stays)
        level.stays = true;
    else if (verdict.outcome == EntryOutcome::Enter)
        enter(ref, verdict.inside);
}

void SequentialRemover::enter(const EntryRef &ref, EntryPolicy policy)
{
    auto entered = m_steps.enter(ref, m_space);
    if (!entered) {
        if (entered.error() == EntryOutcome::Stays)
            m_levels.back().stays = true;
        return;
    }
    m_path += ref.name;
    m_path += '/';
    const bool isOnTheWay = policy == EntryPolicy::Judged;
    m_levels.push_back({std::move(entered->descriptor), entered->inode, std::move(entered->listing),
                        0, m_path.size(), policy, isOnTheWay, entered->formerRights});
    closeOuterLevel();
}

void SequentialRemover::leave()
{
    Level inner = std::move(m_levels.back());
    m_levels.pop_back();
    Level &outer = m_levels.back();
    m_path.truncate(outer.pathSize);
    m_steps.giveBack(inner.descriptor.get(), inner.formerRights);
    if (!reopen(outer, inner))
        return;
    inner.descriptor.reset();
    if (inner.stays || m_steps.removeFolder(refIn(outer, outer.next - 1)) == EntryOutcome::Stays)
        outer.stays = true;
}

/// The cleaning was stopped, or is at its end anyway.
void SequentialRemover::leaveAll()
{
    while (m_levels.size() > 1) {
        m_levels.back().stays = true;
        leave();
    }
}

bool SequentialRemover::reopen(Level &level, const Level &inner)
{
    const std::size_t index = m_levels.size() - 1;
    if (index == 0 || level.descriptor.isValid())
        return true;
    auto descriptor = m_steps.back(inner.descriptor.get(), level.inode);
    if (!descriptor) {
        abandonClosedLevels(descriptor.error());
        return false;
    }
    level.descriptor = std::move(*descriptor);
    m_firstOpen = index;
    return true;
}

/// All levels but the outermost are closed, and the way back to them is lost.
void SequentialRemover::abandonClosedLevels(int error)
{
    m_steps.abandon(m_path.first(m_levels[1].pathSize - 1), error);
    m_levels.resize(1);
    m_levels.front().stays = true;
    m_path.truncate(m_levels.front().pathSize);
    m_firstOpen = 1;
}

void SequentialRemover::closeOuterLevel()
{
    if (m_levels.size() - m_firstOpen > kOpenLevels)
        m_levels[m_firstOpen++].descriptor.reset();
}

int SequentialRemover::descriptorOf(const Level &level) const
{
    return &level == &m_levels.front() ? m_startDescriptor : level.descriptor.get();
}

EntryRef SequentialRemover::refIn(const Level &level, std::size_t index) const
{
    return {descriptorOf(level), m_path, level.listing.name(level.listing.at(index))};
}
