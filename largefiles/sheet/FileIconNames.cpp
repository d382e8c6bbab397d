#include "largefiles/sheet/FileIconNames.h"

#include "platform/look/FileImages.h"

QString FileIconNames::imageName(const QByteArray &fileName)
{
    const QByteArray ending = fileName.mid(fileName.lastIndexOf('.') + 1);
    const auto known = m_names.constFind(ending);
    if (known != m_names.constEnd())
        return *known;
    if (ending.size() < fileName.size() && !m_wanted.contains(ending)) {
        m_wanted.insert(ending);
        lookUp();
    }
    return QStringLiteral("document");
}

/// Looks up all endings that are wanted, because this look-up replaces an earlier one.
void FileIconNames::lookUp()
{
    m_job.run([this, wanted = m_wanted](const std::stop_token &stop) -> BackgroundReply {
        QHash<QByteArray, QString> names;
        for (const QByteArray &ending : wanted) {
            if (stop.stop_requested())
                return {};
            names.insert(ending, imageNameForGenericIcon(genericIconName("file." + ending)));
        }
        return [this, names] {
            m_names.insert(names);
            m_wanted.clear();
            Q_EMIT namesChanged();
        };
    });
}
