#include "chart/SliceAnnouncements.h"

#include <QAccessible>
#include <QWidget>

namespace {

void announce(QWidget &chart, int index, QAccessible::Event type)
{
    if (!QAccessible::isActive() || index < 0)
        return;
    QAccessibleEvent event(&chart, type);
    event.setChild(index);
    QAccessible::updateAccessibility(&event);
}

} // namespace

void announceFocusedSlice(QWidget &chart, int index)
{
    announce(chart, index, QAccessible::Focus);
}

void announceSliceName(QWidget &chart, int index)
{
    announce(chart, index, QAccessible::NameChanged);
}

void announceSliceState(QWidget &chart, int index)
{
    if (!QAccessible::isActive() || index < 0)
        return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(&chart, changed);
    event.setChild(index);
    QAccessible::updateAccessibility(&event);
}
