#pragma once

#include <QList>
#include <QString>

enum class AlertStyle { Informational, Warning, Critical };

enum class AlertButtonRole {
    Plain,
    Cancel,      ///< what Escape presses
    Destructive, ///< marked in red, never the default, and never pressed in haste
};

struct AlertButton
{
    QString title;
    AlertButtonRole role = AlertButtonRole::Plain;
};

/// A short message that waits for an answer. The first button that destroys nothing is the default:
/// it stands at the right and Enter presses it, wherever the focus is. Escape presses the button of
/// the cancel role, or the only one, unless it destroys. Without buttons there is one "OK".
struct Alert
{
    AlertStyle style = AlertStyle::Informational;
    QString messageText = {};
    QString informativeText = {};
    QList<AlertButton> buttons = {};
};
