#include "app/grant/GrantAlert.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("GrantAlert", text);
}

QString explanation(GrantFailure failure)
{
    switch (failure) {
    case GrantFailure::Missing:
        return tr("No home folder has been chosen yet.");
    case GrantFailure::Damaged:
        return tr("Vantor’s record of the folder that you chose is damaged.");
    case GrantFailure::Gone:
        return tr(
            "The folder that you chose is not where it was. It may have been moved, renamed or "
            "removed, or its disk is not connected.");
    case GrantFailure::Replaced:
        return tr("There is another folder now where the one was that you chose.");
    case GrantFailure::Unreadable:
        return tr("The folder that you chose cannot be opened.");
    case GrantFailure::Foreign:
        return tr("Vantor was started as the system administrator, and the folder that you chose "
                  "belongs to somebody else.");
    }
    Q_UNREACHABLE();
}

} // namespace

Alert grantAlert(GrantFailure failure)
{
    return {.style = AlertStyle::Warning,
            .messageText = tr("Vantor cannot use your home folder."),
            .informativeText = explanation(failure) + u'\n' +
                               tr("Nothing is measured or deleted until you choose it again."),
            .buttons = {{tr("Choose Again…")}, {tr("Not Now"), AlertButtonRole::Cancel}}};
}

Alert grantNotInForceAlert()
{
    return {.style = AlertStyle::Informational,
            .messageText = tr("The new home folder is used from the next start."),
            .informativeText =
                tr("Vantor has already worked in another folder since it was started, "
                   "and stays away from both until then."),
            .buttons = {{tr("Restart Vantor")}, {tr("Not Now"), AlertButtonRole::Cancel}}};
}
