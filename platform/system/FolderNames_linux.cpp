#include "platform/system/FolderNames.h"

#include <QByteArrayList>
#include <algorithm>

namespace {

/// One line of the list.
struct Mount
{
    QByteArray number;
    QByteArray device;
    QByteArray root;  ///< what of the file system is shown; with a slash at its end
    QByteArray point; ///< where; the same
};

QByteArray slashed(const QByteArray &path)
{
    return path.endsWith('/') ? path : path + '/';
}

/// Blanks, line ends and backslashes are written as three octal digits.
QByteArray unescaped(const QByteArray &text)
{
    constexpr qsizetype kDigits = 3;
    constexpr int kOctal = 8;
    QByteArray plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        bool isNumber = false;
        const uint code =
            text.at(i) == '\\' ? text.mid(i + 1, kDigits).toUInt(&isNumber, kOctal) : 0;
        plain.append(isNumber ? static_cast<char>(code) : text.at(i));
        i += isNumber ? kDigits : 0;
    }
    return plain;
}

std::vector<Mount> mountsIn(const QByteArray &text)
{
    constexpr qsizetype kFields = 5;
    std::vector<Mount> mounts;
    for (const QByteArray &line : text.split('\n')) {
        const QByteArrayList fields = line.split(' ');
        if (fields.size() >= kFields)
            mounts.push_back({fields.at(0), fields.at(2), slashed(unescaped(fields.at(3))),
                              slashed(unescaped(fields.at(4)))});
    }
    return mounts;
}

} // namespace

std::optional<FolderPlace> FolderPlace::of(const QByteArray &mounts, const QByteArray &mountNumber,
                                           const QByteArray &path)
{
    const std::vector<Mount> all = mountsIn(mounts);
    const auto mount = std::ranges::find(all, mountNumber, &Mount::number);
    if (mount == all.end() || !slashed(path).startsWith(mount->point))
        return std::nullopt;
    return FolderPlace{mount->device, mount->root + slashed(path).sliced(mount->point.size())};
}

void FolderNames::add(const QByteArray &path)
{
    m_names.push_back({slashed(path), {}});
}

void FolderNames::add(const QByteArray &mounts, const FolderPlace &place)
{
    const QByteArray folder = slashed(place.path);
    for (const Mount &mount : mountsIn(mounts)) {
        if (mount.device != place.device)
            continue;
        if (folder.startsWith(mount.root))
            add(mount.point + folder.sliced(mount.root.size()));
        else if (mount.root.startsWith(folder))
            m_names.push_back({mount.point, mount.root.sliced(folder.size())});
    }
}

QByteArray FolderNames::pathInside(QByteArrayView path) const
{
    for (const auto &[folder, inside] : m_names) {
        if (path.startsWith(folder) && path.size() > folder.size())
            return inside + path.sliced(folder.size()).toByteArray();
        const bool isTop = path.size() + 1 == folder.size() && folder.startsWith(path);
        if (isTop && !inside.isEmpty())
            return inside.chopped(1);
    }
    return {};
}
