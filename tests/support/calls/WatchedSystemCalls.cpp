#include "tests/support/calls/WatchedSystemCalls.h"

#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <QByteArray>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <dirent.h>
#include <vector>

class WatchedSystemCalls::Calls final : public ForwardingSystemCalls
{
public:
    explicit Calls(Before before) : m_before(std::move(before)) {}
    ~Calls() override { awaitBackgroundThreads(); }

    int count() const { return m_count; }
    void setTraits(const FileSystemTraits &traits) { m_traits = traits; }
    FileSystemTraits fileSystemTraits(int) const override { return m_traits; }

    SystemResult<FileDescriptor> openFolder(int parent, const char *relativePath,
                                            Descent descent) const override
    {
        return watched<SystemResult<FileDescriptor>>(WatchedCall::OpenFolder, relativePath, [&] {
            return ForwardingSystemCalls::openFolder(parent, relativePath, descent);
        });
    }
    SystemResult<FileDescriptor> openParent(int folder) const override
    {
        return watched<SystemResult<FileDescriptor>>(
            WatchedCall::OpenParent, "", [&] { return ForwardingSystemCalls::openParent(folder); });
    }
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return watched<SystemResult<std::size_t>>(WatchedCall::ReadEntries, "", [&] {
            auto filled = ForwardingSystemCalls::readEntries(folder, buffer);
            if (filled)
                sortRecords(buffer.first(*filled));
            return filled;
        });
    }
    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        return watched<SystemResult<FileStatus>>(
            WatchedCall::Status, name, [&] { return ForwardingSystemCalls::status(parent, name); });
    }
    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return watched<SystemResult<FileStatus>>(
            WatchedCall::StatusOf, "", [&] { return ForwardingSystemCalls::statusOf(descriptor); });
    }
    SystemResult<FileKind> kindBehind(int parent, const char *name) const override
    {
        return watched<SystemResult<FileKind>>(WatchedCall::KindBehind, name, [&] {
            return ForwardingSystemCalls::kindBehind(parent, name);
        });
    }
    bool mayChangeEntries(int folder) const override
    {
        return m_before(m_count++, WatchedCall::MayChangeEntries, "") == 0 &&
               ForwardingSystemCalls::mayChangeEntries(folder);
    }

private:
    static void sortRecords(std::span<char> records);

    template <typename Result, typename Call>
    Result watched(WatchedCall call, const char *name, Call forward) const
    {
        const int error = m_before(m_count++, call, name);
        return error != 0 ? Result(tl::unexpected(error)) : forward();
    }

    const Before m_before;
    FileSystemTraits m_traits;
    mutable std::atomic<int> m_count = 0;
};

void WatchedSystemCalls::Calls::sortRecords(std::span<char> records)
{
    std::vector<QByteArray> list;
    for (std::size_t at = 0; at < records.size();) {
        const char *record = records.data() + at;
        list.emplace_back(record, reinterpret_cast<const dirent64 *>(record)->d_reclen);
        at += list.back().size();
    }
    const auto nameOf = [](const QByteArray &record) {
        return QByteArray(record.constData() + offsetof(dirent64, d_name));
    };
    std::sort(list.begin(), list.end(),
              [&](const QByteArray &a, const QByteArray &b) { return nameOf(a) < nameOf(b); });
    char *end = records.data();
    for (const QByteArray &record : list)
        end = std::copy(record.begin(), record.end(), end);
}

WatchedSystemCalls::WatchedSystemCalls(Before before)
    : m_calls(std::make_unique<Calls>(std::move(before)))
{
}

WatchedSystemCalls::~WatchedSystemCalls() = default;

WatchedSystemCalls::operator const SystemCalls &() const
{
    return *m_calls;
}

void WatchedSystemCalls::setTraits(const FileSystemTraits &traits)
{
    m_calls->setTraits(traits);
}

int WatchedSystemCalls::count() const
{
    return m_calls->count();
}
