#pragma once

#include <QByteArray>
#include <memory>

class SystemCalls;

/// A file system on which one folder is a volume of its own without being a mount, as some file
/// systems have them: it opens like any other, and only its device number tells. Any thread.
class SubVolume final
{
public:
    /// By the folder's absolute path.
    explicit SubVolume(const QByteArray &folder);
    ~SubVolume();

    /// From now on as if everything lay in memory, or nothing.
    void setForOneThread(bool isForOneThread);

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

private:
    class Calls;

    std::unique_ptr<Calls> m_calls;
};
