#pragma once

#include "platform/files/DurableFile.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/run/Must.h"

#include <QDir>
#include <QTemporaryDir>

inline constexpr char kName[] = "sample";
inline const QByteArray kOlder = "the oldest content";
inline const QByteArray kOld = "{\"the\": \"old content\"}";
inline const QByteArray kNew = "{\"a newer\": \"and longer content\", \"of\": [1, 2, 3]}";

/// The folder of one durable file, as the file system shows it.
class DurableFileFolder final
{
public:
    QString path(const char *name = "") const { return m_folder.filePath(QLatin1String(name)); }

    DurableFile file(const SystemCalls &calls = hostSystemCalls()) const
    {
        return DurableFile(calls, openedFolder(QFile::encodeName(m_folder.path())), kName);
    }

    QByteArray raw(const char *name = kName) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void setRaw(const QByteArray &bytes, const char *name = kName) const
    {
        QFile file(path(name));
        const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                               file.write(bytes) == bytes.size();
        must(isWritten, "writing a file");
    }

    /// Fills the folder as two writes do: with a current generation and a previous one.
    void fill() const
    {
        static const QByteArrayList left = leftByTwoWrites();
        setRaw(left.at(0), "sample");
        setRaw(left.at(1), "sample.1");
    }

    QStringList entries(const QString &pattern = QStringLiteral("*")) const
    {
        return QDir(m_folder.path()).entryList({pattern}, QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    QStringList badFiles() const { return entries(QStringLiteral("*.bad-*")); }

private:
    static QByteArrayList leftByTwoWrites()
    {
        const DurableFileFolder folder;
        DurableFile durable = folder.file();
        for (const QByteArray &content : {kOlder, kOld}) {
            const bool isWritten = durable.write(content, Replace::OnlyWhatIsKnown).has_value();
            must(isWritten, "writing a file");
        }
        return {folder.raw("sample"), folder.raw("sample.1")};
    }

    QTemporaryDir m_folder;
};
