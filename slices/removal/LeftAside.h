#pragma once

#include "platform/system/FileDescriptor.h"
#include "slices/removal/ExactRemoval.h"

#include <QByteArray>
#include <mutex>
#include <vector>

class CleaningReportBuilder;
class SystemCalls;

/// Entries that were taken aside and could not get their names back: the folder around them was
/// dragged out of reach of the thread that took them. A thread that is not confined gives them
/// their names. Any thread notes.
class LeftAside final
{
public:
    LeftAside(const SystemCalls &calls, CleaningReportBuilder &builder)
        : m_calls(calls), m_builder(builder)
    {
    }

    /// Notes an entry of an open folder, if it has a private name now. `folderPath` is raw, with a
    /// trailing slash, and for the report. Returns the errno of the failure.
    int note(int folder, const QByteArray &folderPath, const char *name,
             const ExactRemoval::Failure &failure);

    /// Reports those that keep their private names.
    void giveNamesBack();

private:
    struct Entry
    {
        FileDescriptor folder;
        QByteArray folderPath;
        QByteArray name;
        ExactRemoval::Failure failure;
    };
    void report(const QByteArray &folderPath, const ExactRemoval::Failure &failure);

    const SystemCalls &m_calls;
    CleaningReportBuilder &m_builder;
    std::mutex m_mutex; ///< guards all below
    std::vector<Entry> m_entries;
};
