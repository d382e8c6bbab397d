#include "platform/look/FlattenView.h"

QPixmap flattenWithSubviews(QWidget &view)
{
    return view.size().isEmpty() ? QPixmap() : view.grab();
}
