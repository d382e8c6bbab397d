#include "platform/desktop/Activation.h"

#include <QWidget>

namespace {

constexpr char kToken[] = "XDG_ACTIVATION_TOKEN";
constexpr char kStartupId[] = "DESKTOP_STARTUP_ID";

} // namespace

QByteArray givenActivation()
{
    return qEnvironmentVariableIsEmpty(kToken) ? qgetenv(kStartupId) : qgetenv(kToken);
}

/// The toolkit takes the permission from the environment when it activates a window. It must not
/// stay there: the programs that are started later would inherit it.
void bringToFront(QWidget &window, const QByteArray &activation)
{
    if (!activation.isEmpty())
        qputenv(kToken, activation);
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    qunsetenv(kToken);
}
