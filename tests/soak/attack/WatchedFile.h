#pragma once

#include "platform/system/FileDescriptor.h"

#include <QByteArray>
#include <vector>

/// A file that must not be lost. It is held open, so it is known whether it has a name left,
/// wherever that is by now.
class WatchedFile final
{
public:
    /// Makes it.
    explicit WatchedFile(const QByteArray &path);

    bool isLost() const;
    /// Gives it this name again, in the place of whatever is there.
    void bringBack(const QByteArray &path) const;

private:
    FileDescriptor m_file;
};

/// How many of them are.
int lostOf(const std::vector<WatchedFile> &files);
