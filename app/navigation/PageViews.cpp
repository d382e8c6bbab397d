#include "app/navigation/PageViews.h"

#include "platform/desktop/InterfaceLoader.h"
#include "widgets/LabelController.h"
#include "widgets/TextField.h"

QList<QWidget *> directSubviews(const QWidget &view)
{
    return view.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
}

void connectSizeLabels(LabelController &controller, QWidget &view)
{
    controller.setFreeLabel(outlet<TextField>(view, "freeLabel"));
    controller.setUsedLabel(outlet<TextField>(view, "usedLabel"));
    controller.setTotalLabel(outlet<TextField>(view, "totalLabel"));
}
