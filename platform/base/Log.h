#pragma once

#include <QLoggingCategory>

/// The program's log lines. They are part of its behaviour: tests read them, so their words are
/// fixed. Shown by default.
Q_DECLARE_LOGGING_CATEGORY(logVantor)

/// What the chart logs while it draws: many lines a second. Off unless QT_LOGGING_RULES turns it
/// on.
Q_DECLARE_LOGGING_CATEGORY(logChart)
