#include "slices/plan/Protection.h"

#include "platform/files/Packages.h"

#include <algorithm>

namespace {

QByteArrayView lastName(const QByteArray &path)
{
    return QByteArrayView(path).sliced(path.lastIndexOf('/') + 1);
}

} // namespace

Protection::Protection(const CleaningPlan &plan, const CleaningLocation &location,
                       std::uint64_t device)
    : m_excluded(plan.excluded()),
      m_inodes(plan.excludedInodesOn(device)),
      m_device(device),
      m_isTouched(location.isTouched),
      m_readOnlyFolders(location.readOnlyFolders)
{
}

void Protection::keep(const FileUrl &folder)
{
    m_kept.add(folder);
    m_isTouched = true;
}

bool Protection::keepsInode(std::uint64_t inode) const
{
    return std::binary_search(m_inodes->begin(), m_inodes->end(), inode);
}

ExclusionMatch Protection::match(const QByteArray &path, FileKind kind) const
{
    const bool isFolder = kind == FileKind::Folder;
    const QByteArray slashed = path + '/';
    const QByteArray &text = isFolder ? slashed : path;
    const ExclusionMatch found =
        std::max({m_excluded.matchByText(text), m_excluded.matchByPath(slashed),
                  m_kept.matchByText(text), m_kept.matchByPath(slashed)});
    if (found == ExclusionMatch::OnTheWay && (!isFolder || isPackageName(lastName(path))))
        return ExclusionMatch::Whole;
    return found;
}
