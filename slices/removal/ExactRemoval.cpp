#include "slices/removal/ExactRemoval.h"

#include "platform/system/SystemCalls.h"

#include <QHash>
#include <cerrno>
#include <climits>
#include <new>

namespace {

constexpr QByteArrayView kPrefix(".vantor-aside.");
/// For names that leave no room for the prefix. A number that stands for the whole name follows, so
/// that two such names do not get in each other's way.
constexpr QByteArrayView kLongPrefix(".vantor-aside-long.");
constexpr qsizetype kDigits = 8;

/// How much of a private name stands before the old name; 0 in other names.
qsizetype prefixSize(QByteArrayView name)
{
    constexpr qsizetype kLongSize = kLongPrefix.size() + kDigits + 1;
    if (name.startsWith(kPrefix) && name.size() > kPrefix.size())
        return kPrefix.size();
    return name.startsWith(kLongPrefix) && name.size() > kLongSize ? kLongSize : 0;
}

} // namespace

bool ExactRemoval::isSame(const FileStatus &found, const FileStatus &expected)
{
    return found.inodeId() == expected.inodeId() && found.kind == expected.kind &&
           found.size == expected.size && found.contentChanged == expected.contentChanged;
}

QByteArray ExactRemoval::privateName(const QByteArray &name)
{
    if (name.size() + kPrefix.size() <= NAME_MAX)
        return kPrefix.toByteArray() + name;
    const QByteArray number = QByteArray::number(qulonglong(qHash(name) & 0xFFFFFFFFU), 16);
    const QByteArray start = kLongPrefix.toByteArray() + number.rightJustified(kDigits, '0') + '.';
    return start + name.first(NAME_MAX - start.size());
}

bool ExactRemoval::isPrivate(const char *name)
{
    return prefixSize(name) > 0;
}

tl::expected<void, ExactRemoval::Failure> ExactRemoval::remove(int folder, const char *name,
                                                               const FileStatus &expected) const
{
    const QByteArray aside = privateName(name);
    const auto moved = moveToFree(folder, name, aside.constData());
    if (!moved && (moved.error() == ENOSPC || moved.error() == EDQUOT))
        return removeIfSame(folder, name, expected).map_error([](int error) {
            return Failure{error, {}};
        });
    if (!moved)
        return tl::unexpected(Failure{moved.error(), {}});
    const auto outcome = removeIfSame(folder, aside.constData(), expected);
    if (outcome)
        return {};
    const auto back = moveToFree(folder, aside.constData(), name);
    const bool isBack = back || back.error() == ENOENT;
    return tl::unexpected(Failure{outcome.error(), isBack ? QByteArray() : aside});
}

/// Whatever happens, it returns, for the entry has to get its name back.
SystemResult<void> ExactRemoval::removeIfSame(int folder, const char *aside,
                                              const FileStatus &expected) const
{
    try {
        const auto found = m_calls.status(folder, aside);
        if (found && isSame(*found, expected))
            return found->kind == FileKind::Folder ? m_calls.removeFolder(folder, aside)
                                                   : m_calls.removeFile(folder, aside);
        return tl::unexpected(ESTALE);
    } catch (const std::bad_alloc &) {
        return tl::unexpected(ENOMEM);
    }
}

SystemResult<void> ExactRemoval::putBack(int folder, const char *privateName) const
{
    return moveToFree(folder, privateName, privateName + prefixSize(privateName));
}

/// Some file systems know no move that spares what is there. There the look comes right before.
SystemResult<void> ExactRemoval::moveToFree(int folder, const char *name, const char *newName) const
{
    const auto moved = m_calls.moveToFree(folder, name, newName);
    if (moved || moved.error() != EINVAL)
        return moved;
    const auto there = m_calls.status(folder, newName);
    if (there)
        return tl::unexpected(EEXIST);
    return there.error() == ENOENT ? m_calls.rename(folder, name, newName)
                                   : tl::unexpected(there.error());
}
