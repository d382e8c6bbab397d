#include "largefiles/sheet/SearchStatus.h"

namespace {

constexpr qsizetype kMostDetails = 20;

} // namespace

void SearchStatus::begin()
{
    *this = {};
    m_state = State::Searching;
}

void SearchStatus::end(bool ranToItsEnd)
{
    m_state = ranToItsEnd ? State::Done : State::Stopped;
}

QString SearchStatus::countText(int fileCount) const
{
    if (fileCount == 0)
        return tr("No files over 100 MB");
    return fileCount == 1 ? tr("1 file over 100 MB") : tr("%1 files over 100 MB").arg(fileCount);
}

QString SearchStatus::text(int fileCount) const
{
    QString text;
    if (m_state == State::New)
        return text;
    if (m_state == State::Searching)
        text = m_folder.isValid()
                   ? tr("Searching %1…").arg(QString::fromUtf8(m_folder.lastPathComponent()))
                   : tr("Searching…");
    else
        text = countText(fileCount);
    const qsizetype places = m_unreadable.size();
    if (places > 0)
        text +=
            QStringLiteral("  ·  ") + (places == 1 ? tr("1 place could not be read")
                                                   : tr("%1 places could not be read").arg(places));
    return text;
}

QString SearchStatus::emptyText() const
{
    switch (m_state) {
    case State::New:
    case State::Stopped:
        return {};
    case State::Searching:
        return tr("Looking for large files…");
    case State::Done:
        if (!m_unreadable.isEmpty())
            return tr("No files over 100 MB were found\nin what could be read.");
        return m_elsewhere.isEmpty()
                   ? tr("There are no files over 100 MB\nin your folders.")
                   : tr("There are no files over 100 MB\nin your folders on this disk.");
    }
    Q_UNREACHABLE();
}

QString SearchStatus::details() const
{
    QStringList shown;
    for (const QString &folder : m_elsewhere)
        shown << tr("%1 is on another disk, which Vantor never cleans").arg(folder);
    shown << m_unreadable.first(qMin(kMostDetails, m_unreadable.size()));
    if (m_unreadable.size() > kMostDetails)
        shown << QStringLiteral("…");
    return shown.join(u'\n');
}
