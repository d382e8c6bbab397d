#pragma once

#include <QByteArray>

/// As long as this object lives, the user has no folder in memory, and there is no place to make
/// one either.
class NoRuntimeFolder final
{
public:
    NoRuntimeFolder()
    {
        qputenv("XDG_RUNTIME_DIR", "/dev/null");
        qputenv("TMPDIR", "/dev/null");
    }
    ~NoRuntimeFolder()
    {
        qputenv("XDG_RUNTIME_DIR", m_runtime);
        m_temporary.isNull() ? (void)qunsetenv("TMPDIR") : (void)qputenv("TMPDIR", m_temporary);
    }
    NoRuntimeFolder(const NoRuntimeFolder &) = delete;
    NoRuntimeFolder &operator=(const NoRuntimeFolder &) = delete;

private:
    const QByteArray m_runtime = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray m_temporary = qgetenv("TMPDIR");
};
