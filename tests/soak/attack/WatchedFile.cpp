#include "tests/soak/attack/WatchedFile.h"

#include "tests/support/run/Must.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

WatchedFile::WatchedFile(const QByteArray &path)
    : m_file(::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))
{
    must(m_file.isValid() && ::write(m_file.get(), "precious", 8) == 8, "a file to be watched");
}

bool WatchedFile::isLost() const
{
    struct stat found
    {
    };
    return ::fstat(m_file.get(), &found) != 0 || found.st_nlink == 0;
}

void WatchedFile::bringBack(const QByteArray &path) const
{
    std::array<char, PATH_MAX> present{};
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(m_file.get());
    const ssize_t size = ::readlink(link.constData(), present.data(), present.size() - 1);
    if (size > 0)
        std::rename(present.data(), path.constData());
}

int lostOf(const std::vector<WatchedFile> &files)
{
    return int(std::count_if(files.begin(), files.end(),
                             [](const WatchedFile &file) { return file.isLost(); }));
}
