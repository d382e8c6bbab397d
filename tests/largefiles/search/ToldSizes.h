#pragma once

#include "largefiles/search/LargeFileList.h"

#include <QHash>
#include <utility>

inline QByteArrayList namesOf(const FileUrls &urls)
{
    QByteArrayList names;
    for (const FileUrl &url : urls)
        names.append(url.lastPathComponent());
    return names;
}

/// A disk whose file sizes the test sets; answers when it is told to.
class ToldSizes final
{
public:
    QHash<QByteArray, qint64> sizes; ///< by name
    QByteArrayList locked;           ///< names of files that may not be deleted
    QHash<QByteArray, FileIdentity> identities;
    int questions = 0;

    LargeFileList::ReadSizes reader()
    {
        return [this](const FileUrls &files, const LargeFileList::Answer &answer) {
            ++questions;
            QList<CurrentSize> read;
            for (const QByteArray &name : namesOf(files))
                read.append({sizes.value(name), !locked.contains(name), identities.value(name)});
            m_waiting.append([answer, read] { answer(read); });
            if (!m_isSlow)
                answerAll();
        };
    }

    void setSlow() { m_isSlow = true; }
    void answerAll()
    {
        for (const auto &answer : std::exchange(m_waiting, {}))
            answer();
    }

private:
    bool m_isSlow = false;
    QList<std::function<void()>> m_waiting;
};
