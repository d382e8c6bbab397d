#include "tests/support/calls/SubVolume.h"

#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/run/Must.h"

#include <optional>
#include <sys/stat.h>

class SubVolume::Calls final : public ForwardingSystemCalls
{
public:
    explicit Calls(std::uint64_t inode) : m_inode(inode) {}

    void setInMemory(bool isInMemory) { m_isInMemory = isInMemory; }

    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        auto status = ForwardingSystemCalls::statusOf(descriptor);
        if (status && status->inode == m_inode)
            ++status->device;
        return status;
    }
    bool isInMemory(int folder) const override
    {
        return m_isInMemory.value_or(ForwardingSystemCalls::isInMemory(folder));
    }

private:
    const std::uint64_t m_inode;
    std::optional<bool> m_isInMemory;
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

void SubVolume::setInMemory(bool isInMemory)
{
    m_calls->setInMemory(isInMemory);
}

SubVolume::operator const SystemCalls &() const
{
    return *m_calls;
}
