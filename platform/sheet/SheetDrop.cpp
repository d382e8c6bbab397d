#include "platform/sheet/SheetDrop.h"

#include <QVariant>
#include <QWidget>

namespace {

constexpr char kDropProperty[] = "sheetDrop";

} // namespace

void setSheetDrop(QWidget &host, int points)
{
    host.setProperty(kDropProperty, points);
}

int sheetDrop(const QWidget &host)
{
    return host.property(kDropProperty).toInt();
}
