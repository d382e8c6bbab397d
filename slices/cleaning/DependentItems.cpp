#include "slices/cleaning/DependentItems.h"

#include "slices/home/FoundPrograms.h"

ItemOfFile itemOfFilesIn(const CleaningLocation &location)
{
    switch (location.whatGoes) {
    case RemovalScope::Everything:
        return nullptr;
    case RemovalScope::RegularFiles:
        return &databaseOfJournal;
    case RemovalScope::LoneTrashInfo:
        return &itemOfTrashInfo;
    }
    Q_UNREACHABLE();
}

QByteArray itemOfTrashInfo(const QByteArray &name)
{
    constexpr QByteArrayView kEnding(".trashinfo");
    const bool isRecord = name.endsWith(kEnding) && name.size() > kEnding.size();
    return isRecord ? "../files/" + name.chopped(kEnding.size()) : QByteArray();
}
