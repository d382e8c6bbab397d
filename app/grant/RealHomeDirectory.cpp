#include "app/grant/RealHomeDirectory.h"

#include "platform/system/Attempts.h"

#include <QtGlobal>
#include <array>
#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t kFirstSpace = 1024;
constexpr std::size_t kMostSpace = std::size_t{16} * 1024 * 1024;

} // namespace

QByteArray RealHomeDirectory()
{
    std::vector<char> space(kFirstSpace);
    passwd entry{};
    passwd *pw = nullptr;
    int error = 0;
    int attempts = 0;
    do {
        error = ::getpwuid_r(::getuid(), &entry, space.data(), space.size(), &pw);
        if (error == ERANGE)
            space.resize(space.size() * 2);
    } while ((error == ERANGE && space.size() <= kMostSpace) ||
             (error == EINTR && ++attempts < kMostAttempts));
    if (pw == nullptr)
        qt_assert("pw", __FILE__, __LINE__); // also in a release: any other home would be a guess
    return pw->pw_dir;
}
