#include "slices/AnchoredFolder.h"

#include <algorithm>

AnchoredEntry anchoredEntry(const AnchoredPath &path)
{
    const qsizetype slash = path.relativePath.lastIndexOf('/');
    return {{path.anchor, path.relativePath.first(std::max<qsizetype>(slash, 0))},
            path.relativePath.sliced(slash + 1)};
}

SystemResult<FileDescriptor> openAnchored(const SystemCalls &calls, const AnchoredPath &path,
                                          Descent descent)
{
    const char *relative = path.relativePath.isEmpty() ? "." : path.relativePath.constData();
    return calls.openFolder(path.anchor->get(), relative, descent);
}
