#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTextLayout>

class QPainter;

/// A piece of text in one style. An alignment of zero means that the run has no alignment of its
/// own.
struct TextRun
{
    QString text;
    QFont font;
    QColor color;
    Qt::Alignment alignment = {};

    bool operator==(const TextRun &) const = default;
};

/// One line of text in several styles: its runs stand one after another on a common baseline. A
/// value. Measure and draw it on the main thread only.
class AttributedText final
{
public:
    AttributedText() = default;
    AttributedText(std::initializer_list<TextRun> runs) : m_runs(runs) {}

    const QList<TextRun> &runs() const { return m_runs; }
    void append(const TextRun &run) { m_runs.append(run); }

    /// The text without its styles.
    QString string() const;
    /// The styles, for a layout of that text.
    QList<QTextLayout::FormatRange> formats() const;

    /// The run of the first character, for its style; null where there is no character. Its
    /// alignment is that of the whole line.
    const TextRun *firstRun() const;

    /// The room that the line needs, in points.
    QSizeF size() const;

    /// Draws the line in the middle of the rectangle's height, at its left, centre or right as the
    /// first run says. A line that is wider than the rectangle is drawn smaller, so that it fits.
    void draw(QPainter &painter, const QRectF &rectangle) const;

    bool operator==(const AttributedText &) const = default;

private:
    QList<TextRun> m_runs;
};

/// Height of one line in the font, in points; it does not depend on the letters.
double lineHeight(const QFont &font);
