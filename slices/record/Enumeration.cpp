#include "slices/record/Enumeration.h"

#include <QCoreApplication>

QString enumerated(const QStringList &names)
{
    if (names.size() < 2)
        return names.join(QString());
    return QCoreApplication::translate("Enumeration", "%1 and %2")
        .arg(names.mid(0, names.size() - 1).join(QStringLiteral(", ")), names.last());
}
