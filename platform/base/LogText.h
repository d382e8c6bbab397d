#pragma once

#include <QByteArray>
#include <QString>

/// A text from outside, such as the name of a file, as it may stand in the log. Characters that
/// show are unchanged. All others are written as the %XX of their bytes: a line feed would forge a
/// line of its own, an escape would steer the terminal, and a direction mark would turn the rest of
/// the line around.
QString logText(const QString &text);
/// The same for the raw bytes of a path.
QByteArray logText(const QByteArray &path);
