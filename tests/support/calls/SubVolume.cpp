#include "tests/support/calls/SubVolume.h"

#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/run/Must.h"

#include <optional>
#include <sys/stat.h>

class SubVolume::Calls final : public ForwardingSystemCalls
{
public:
    explicit Calls(std::uint64_t inode) : m_inode(inode) {}

    void setForOneThread(bool isForOneThread) { m_isForOneThread = isForOneThread; }

    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        auto status = ForwardingSystemCalls::statusOf(descriptor);
        if (status && status->inode == m_inode)
            ++status->device;
        return status;
    }
    bool isForOneThread(int folder) const override
    {
        return m_isForOneThread.value_or(ForwardingSystemCalls::isForOneThread(folder));
    }

private:
    const std::uint64_t m_inode;
    std::optional<bool> m_isForOneThread;
};

SubVolume::SubVolume(const QByteArray &folder)
{
    struct stat found
    {
    };
    must(::lstat(folder.constData(), &found) == 0, "a folder that is a volume");
    m_calls = std::make_unique<Calls>(found.st_ino);
}

SubVolume::~SubVolume() = default;

void SubVolume::setForOneThread(bool isForOneThread)
{
    m_calls->setForOneThread(isForOneThread);
}

SubVolume::operator const SystemCalls &() const
{
    return *m_calls;
}
