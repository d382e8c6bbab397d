#include "platform/openpanel/OpenPanel.h"

#include "platform/base/DeleteLater.h"
#include "platform/openpanel/OpenPanelView.h"
#include "platform/sheet/Sheet.h"

#include <memory>

void presentOpenPanel(QWidget &host, const OpenPanel &panel, OpenPanelCompletion completion)
{
    // The completion owns the view: the view ends with it, whether it was shown or not.
    const std::shared_ptr<OpenPanelView> view(new OpenPanelView(panel), DeleteLater());
    presentSheet(host, *view, [view, completion = std::move(completion)](int result) {
        if (result == kSheetAccepted)
            completion(view->path());
        else
            completion(std::nullopt);
    });
}
