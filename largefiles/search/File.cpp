#include "largefiles/search/File.h"

QString File::name() const
{
    const QByteArray last = m_fileURL.lastPathComponent();
    return last.isEmpty() ? m_fileURL.displayPath() : QString::fromUtf8(last);
}
