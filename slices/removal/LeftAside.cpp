#include "slices/removal/LeftAside.h"

#include "platform/system/SystemCalls.h"
#include "slices/plan/CleaningReportBuilder.h"

#include <utility>

int LeftAside::note(int folder, const QByteArray &folderPath, const char *name,
                    const ExactRemoval::Failure &failure)
{
    if (failure.leftAs.isEmpty())
        return failure.error;
    if (auto opened = m_calls.openEntry(folder, ".")) {
        const std::scoped_lock lock(m_mutex);
        m_entries.push_back({std::move(*opened), folderPath, name, failure});
    } else {
        report(folderPath, failure);
    }
    return failure.error;
}

void LeftAside::giveNamesBack()
{
    const std::scoped_lock lock(m_mutex);
    const ExactRemoval removal(m_calls);
    for (const Entry &entry : std::exchange(m_entries, {})) {
        ExactRemoval::Failure failure = entry.failure;
        const auto isRenamed = [&](const QByteArray &name) {
            return removal
                .moveToFree(entry.folder.get(), failure.leftAs.constData(), name.constData())
                .has_value();
        };
        if (isRenamed(entry.name))
            continue;
        // A slot does not tell the name, and the notes that do are not kept.
        const QByteArray telling = ExactRemoval::privateName(entry.name);
        if (isRenamed(telling))
            failure.leftAs = telling;
        report(entry.folderPath, failure);
    }
}

void LeftAside::report(const QByteArray &folderPath, const ExactRemoval::Failure &failure)
{
    m_builder.refused(folderPath + failure.leftAs, RefusalReason::Changed, failure.error);
}
