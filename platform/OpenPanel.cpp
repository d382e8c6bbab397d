#include "platform/OpenPanel.h"

#include "platform/DeleteLater.h"
#include "platform/OpenPanelView.h"
#include "platform/Sheet.h"

#include <memory>

void presentOpenPanel(QWidget &host, const OpenPanel &panel, OpenPanelCompletion completion)
{
    // The view lives as long as its completion: it goes with it, shown or not.
    const std::shared_ptr<OpenPanelView> view(new OpenPanelView(panel), DeleteLater());
    presentSheet(host, *view, [view, completion = std::move(completion)](int result) {
        if (result == kSheetAccepted)
            completion(view->path());
        else
            completion(std::nullopt);
    });
}
