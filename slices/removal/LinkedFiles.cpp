#include "slices/removal/LinkedFiles.h"

void LinkedFiles::note(const InodeId &file, std::int64_t before, std::int64_t after)
{
    m_removals[{file.device, file.inode}] = {before, after};
}

bool LinkedFiles::explain(const FileStatus &status) const
{
    const auto found = m_removals.find({status.device, status.inode});
    return found != m_removals.end() && found->second.before <= status.changed &&
           status.changed <= found->second.after;
}
