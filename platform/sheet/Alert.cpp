#include "platform/sheet/Alert.h"

#include "platform/base/DeleteLater.h"
#include "platform/sheet/AlertPanel.h"
#include "platform/sheet/Sheet.h"

#include <memory>

void presentAlert(QWidget &host, const Alert &alert, AlertCompletion completion)
{
    Alert complete = alert;
    if (complete.buttons.isEmpty())
        complete.buttons = {{QStringLiteral("OK"), AlertButtonRole::Plain}};
    // The completion owns the panel: the panel ends with it, whether it was shown or not.
    const std::shared_ptr<AlertPanel> panel(new AlertPanel(complete), DeleteLater());
    presentSheet(
        host, *panel,
        [panel, completion = std::move(completion)](int pressed) {
            if (completion)
                completion(pressed);
        },
        [panel = panel.get()] { panel->cancel(); });
}
