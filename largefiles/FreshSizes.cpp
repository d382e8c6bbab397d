#include "largefiles/FreshSizes.h"

#include "largefiles/ListedFiles.h"

void FreshSizes::read(const FileUrls &files, Answer answer)
{
    m_task.start([this, files, answer = std::move(answer)](const std::stop_token &stop) {
        const QList<qint64> sizes = currentSizes(m_calls, m_access, files, stop);
        QMetaObject::invokeMethod(
            &m_task,
            [stop, sizes, answer] {
                if (!stop.stop_requested())
                    answer(sizes);
            },
            Qt::QueuedConnection);
    });
}
