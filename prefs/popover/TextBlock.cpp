#include "prefs/popover/TextBlock.h"

#include <QPainter>
#include <algorithm>

namespace {

QTextOption wrapping()
{
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

/// A layout knows one kind of line end.
QString withLineSeparators(QString string)
{
    return string.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
}

} // namespace

TextBlock::TextBlock(const AttributedText &text, double maxWidth)
{
    if (!text.firstRun())
        return;
    m_layout.setText(withLineSeparators(text.string()));
    m_layout.setFormats(text.formats());
    m_layout.setTextOption(wrapping());
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(maxWidth);
        line.setPosition({0, m_size.height()});
        m_size = {std::max(m_size.width(), line.naturalTextWidth()),
                  m_size.height() + line.height()};
    }
    m_layout.endLayout();
}

void TextBlock::paint(QPainter &painter, QPointF origin) const
{
    const bool isRightToLeft = m_layout.text().isRightToLeft();
    for (int i = 0; i < m_layout.lineCount(); ++i) {
        const QTextLine line = m_layout.lineAt(i);
        const double indent = isRightToLeft ? m_size.width() - line.naturalTextWidth() : 0;
        line.draw(&painter, origin + QPointF(indent, 0));
    }
}

QSizeF sizeWithWidth(const QString &string, float width, const QFont &font)
{
    const auto points = static_cast<double>(width);
    const TextBlock block({{string, font, Qt::black}}, points);
    return {points, block.size().height()};
}
