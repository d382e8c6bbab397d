#include "platform/sheet/PointerClearance.h"

#include "platform/look/PanelButton.h"

#include <QLayout>

namespace {

constexpr int kClearance = 10; // a hand that clicks moves a little

/// A panel that has not been shown yet has not been laid out either.
void layOutNow(const QWidget &panel)
{
    if (QLayout *const layout = panel.layout()) {
        layout->invalidate();
        layout->activate();
    }
}

} // namespace

int pointerClearance(QWidget &panel, QPoint pointer, int room)
{
    layOutNow(panel);
    for (const PanelButton *button : panel.findChildren<PanelButton *>()) {
        if (button->look() != PanelButtonLook::Destructive || button->isHidden())
            continue;
        const QRect reach = QRect(button->mapTo(&panel, QPoint()), button->size())
                                .adjusted(-kClearance, -kClearance, kClearance, kClearance);
        if (!reach.contains(pointer))
            continue;
        const int down = pointer.y() - reach.top() + 1;
        return down <= room ? down : pointer.y() - reach.bottom() - 1;
    }
    return 0;
}
