#include "platform/system/FileDescriptor.h"

#include <unistd.h>

void FileDescriptor::reset()
{
    if (isValid())
        ::close(std::exchange(m_descriptor, kNone));
}
