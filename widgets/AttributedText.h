#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTextLayout>

class QPainter;

/// A piece of text in one style. An alignment of zero is none of its own.
struct TextRun
{
    QString text;
    QFont font;
    QColor color;
    Qt::Alignment alignment = {};

    bool operator==(const TextRun &) const = default;
};

/// One line of text in several styles, a value: its runs stand one after another on a common
/// baseline. Measuring and drawing belong to the main thread.
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

    /// The style of the first character, as a run; null where there is no character. Its
    /// alignment is that of the whole line.
    const TextRun *firstRun() const;

    /// Room that the line takes, in points.
    QSizeF size() const;

    /// Draws the line in the middle of the rectangle's height, at its left, centre or right as
    /// the first run asks. A line wider than the rectangle is drawn smaller, so that it fits.
    void draw(QPainter &painter, const QRectF &rectangle) const;

    bool operator==(const AttributedText &) const = default;

private:
    QList<TextRun> m_runs;
};

/// Height of one line in the font, in points, whatever its letters.
double lineHeight(const QFont &font);
