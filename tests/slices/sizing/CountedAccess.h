#pragma once

#include "platform/files/FileAccess.h"
#include "tests/support/disk/MadeTree.h"

/// The grant of a made tree, which counts how it is used.
class CountedAccess final : public FileAccess
{
public:
    explicit CountedAccess(const MadeTree &tree) : m_tree(tree) {}

    int starts = 0;
    int stops = 0;

    void startAccessing() override { ++starts; }
    void stopAccessing() override { ++stops; }
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        const QByteArray home = m_tree.path() + '/';
        if (!url.path().startsWith(home) || starts != stops + 1)
            return std::nullopt;
        return AnchoredPath{m_tree.descriptor(), url.path().mid(home.size())};
    }

private:
    const MadeTree &m_tree;
};
