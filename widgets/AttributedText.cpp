#include "widgets/AttributedText.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

namespace {

/// A text laid out on a single line.
class Line final
{
public:
    explicit Line(const AttributedText &text)
    {
        m_layout.setText(text.string());
        m_layout.setFormats(text.formats());
        QTextOption option;
        option.setWrapMode(QTextOption::NoWrap);
        m_layout.setTextOption(option);
        m_layout.beginLayout();
        m_line = m_layout.createLine();
        m_layout.endLayout();
    }

    double width() const { return m_line.horizontalAdvance(); }
    double height() const { return m_line.height(); }
    double ascent() const { return m_line.ascent(); }
    void draw(QPainter &painter, QPointF topLeft) const { m_layout.draw(&painter, topLeft); }

private:
    QTextLayout m_layout;
    QTextLine m_line;
};

double leftOf(const QRectF &rectangle, double width, Qt::Alignment alignment)
{
    if (alignment & Qt::AlignHCenter)
        return rectangle.center().x() - width / 2;
    if (alignment & Qt::AlignRight)
        return rectangle.right() - width;
    return rectangle.left();
}

/// Letters are sharpest when their baseline lies between two rows of pixels.
double onWholeDots(double y, const QPainter &painter)
{
    const double scale = painter.device()->devicePixelRatioF();
    return std::round(y * scale) / scale;
}

} // namespace

QString AttributedText::string() const
{
    QString string;
    for (const TextRun &run : m_runs)
        string += run.text;
    return string;
}

QList<QTextLayout::FormatRange> AttributedText::formats() const
{
    QList<QTextLayout::FormatRange> formats;
    int start = 0;
    for (const TextRun &run : m_runs) {
        QTextLayout::FormatRange range;
        range.start = start;
        range.length = static_cast<int>(run.text.size());
        range.format.setFont(run.font);
        range.format.setForeground(run.color);
        formats.append(range);
        start += range.length;
    }
    return formats;
}

const TextRun *AttributedText::firstRun() const
{
    for (const TextRun &run : m_runs) {
        if (!run.text.isEmpty())
            return &run;
    }
    return nullptr;
}

QSizeF AttributedText::size() const
{
    if (!firstRun())
        return {0, 0};
    const Line line(*this);
    return {line.width(), line.height()};
}

void AttributedText::draw(QPainter &painter, const QRectF &rectangle) const
{
    const TextRun *first = firstRun();
    if (!first || rectangle.isEmpty())
        return;
    const Line line(*this);
    const double scale = std::min(1.0, rectangle.width() / line.width());
    const double top = rectangle.center().y() - line.height() * scale / 2;
    const double baseline = onWholeDots(top + line.ascent() * scale, painter);

    painter.save();
    painter.translate(leftOf(rectangle, line.width() * scale, first->alignment), baseline);
    painter.scale(scale, scale);
    line.draw(painter, QPointF(0, -line.ascent()));
    painter.restore();
}

double lineHeight(const QFont &font)
{
    return QFontMetricsF(font).height();
}
