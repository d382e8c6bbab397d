#pragma once

#include "widgets/AttributedText.h"

#include <QTextLayout>

class QPainter;

/// A text broken into lines at a width: measured and painted by the same lines, so that what was
/// measured is what is seen. Wraps between words, inside a word only where it is wider than the
/// line. Main thread only.
class TextBlock final
{
public:
    TextBlock(const AttributedText &text, double maxWidth);

    /// The width of the longest line and the height of all, in points; empty for an empty text.
    QSizeF size() const { return m_size; }

    /// The lines below and right of `origin`; those of right-to-left text end at size().width().
    void paint(QPainter &painter, QPointF origin) const;

private:
    QTextLayout m_layout;
    QSizeF m_size{0, 0};
};

/// The room that a text needs at a width: the width as given (not as used) and the height of its
/// lines in this font.
QSizeF sizeWithWidth(const QString &string, float width, const QFont &font);
