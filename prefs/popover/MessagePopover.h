#pragma once

#include "widgets/AttributedText.h"

#include <optional>

class Popover;
class QWidget;

/// One call that shows a text in a popover: wrapped at `maxWidth` points, beside `rect` (in the
/// coordinates of `view`), at `preferredEdge` of it if there is room. Each shorter call fills in
/// what it lacks. The popover lives by itself until the user turns elsewhere; callers that want to
/// close it sooner keep the result in a QPointer. Main thread only.
class MessagePopover final
{
public:
    /// On the control background.
    static Popover *showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge,
                                       const QString &string, float maxWidth);

    /// In the control text colour and the system font.
    static Popover *showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge,
                                       const QString &string, const QColor &backgroundColour,
                                       float maxWidth);

    static Popover *showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge,
                                       const QString &string, const QColor &backgroundColour,
                                       const QColor &foregroundColour, const QFont &font,
                                       float maxWidth);

    /// Without a string the popover is empty, 30 by 30 points.
    static Popover *showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge,
                                       const std::optional<AttributedText> &attributedString,
                                       const QColor &backgroundColour, float maxWidth);
};
