#pragma once

#include <utility>

/// Owns one open file descriptor and closes it. It can be moved, never copied. Any thread, one at a
/// time.
class FileDescriptor final
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, kNone))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    bool isValid() const { return m_descriptor != kNone; }
    int get() const { return m_descriptor; }
    void reset();

private:
    static constexpr int kNone = -1;
    int m_descriptor = kNone;
};
