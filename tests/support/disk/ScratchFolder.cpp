#include "tests/support/disk/ScratchFolder.h"

#include <QDir>
#include <QFile>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kForAll = 0755;

void require(bool done, const char *what, const QByteArray &path)
{
    if (!done)
        qFatal("a test could not make its %s %s", what, path.constData());
}

} // namespace

ScratchFolder::ScratchFolder()
{
    const QString temporary = QDir(QDir::tempPath()).canonicalPath();
    m_path = QFile::encodeName(temporary) + "/vantor-test-XXXXXX";
    require(::mkdtemp(m_path.data()) != nullptr, "folder", m_path);
    require(::chmod(m_path.constData(), kForAll) == 0, "folder", m_path);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored; // what the test made inaccessible to itself stays
    std::filesystem::remove_all(m_path.toStdString(), ignored);
}

QByteArray ScratchFolder::makeFolder(const QByteArray &relativePath) const
{
    std::error_code error;
    std::filesystem::create_directories(path(relativePath).toStdString(), error);
    require(!error, "folder", path(relativePath));
    return path(relativePath);
}

QByteArray ScratchFolder::makeFile(const QByteArray &relativePath, off_t size) const
{
    constexpr mode_t kReadable = 0644;
    const int file =
        ::open(path(relativePath).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kReadable);
    require(file >= 0 && ::ftruncate(file, size) == 0, "file", path(relativePath));
    ::close(file);
    return path(relativePath);
}

QByteArray ScratchFolder::makeLink(const QByteArray &relativePath, const QByteArray &target) const
{
    require(::symlink(target.constData(), path(relativePath).constData()) == 0, "link",
            path(relativePath));
    return path(relativePath);
}
