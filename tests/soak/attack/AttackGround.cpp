#include "tests/soak/attack/AttackGround.h"

#include "tests/support/run/Must.h"

#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace {

void makeFile(const QByteArray &path)
{
    const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    must(file >= 0 && ::write(file, "x", 1) == 1, "a file");
    ::close(file);
}

void fill(const QByteArray &folder)
{
    for (int i = 0; i < AttackGround::kFolders; ++i)
        std::filesystem::create_directories(
            (folder + '/' + AttackGround::folderName(i)).toStdString());
    for (int i = 0; i < AttackGround::kFiles; ++i)
        makeFile(folder + '/' + AttackGround::fileName(i));
}

} // namespace

void AttackGround::makeAnew() const
{
    std::filesystem::remove_all(m_path.toStdString());
    fill(location());
    fill(outside());
    std::filesystem::create_directories(excluded().toStdString());
    std::filesystem::create_directories(path("home/Documents").toStdString());
}

int AttackGround::missingOutside() const
{
    int missing = 0;
    for (int i = 0; i < kFiles; ++i)
        missing += ::access((outside() + '/' + fileName(i)).constData(), F_OK) == 0 ? 0 : 1;
    return missing;
}
