#include "platform/look/WrappedLabel.h"

#include <QPainter>
#include <QtMath>

namespace {

constexpr double kLineSpacing = 1.25; // of the font's own height
constexpr int kPreferredWidth = 360;

} // namespace

WrappedLabel::WrappedLabel(const QString &text, const QFont &font, QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setText(text);
    setFont(font);
    setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

double WrappedLabel::breakLines(QTextLayout &layout, int width) const
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(layoutDirection());
    layout.setTextOption(option);
    const double step = fontMetrics().height() * kLineSpacing;
    double top = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, top + (step - line.height()) / 2));
        top += step;
    }
    layout.endLayout();
    return top;
}

int WrappedLabel::heightForWidth(int width) const
{
    // The layout treats a line feed like any other character; only a line separator breaks a line.
    QTextLayout layout(QString(text()).replace(QLatin1Char('\n'), QChar::LineSeparator), font());
    return qCeil(breakLines(layout, width));
}

QSize WrappedLabel::sizeHint() const
{
    return {kPreferredWidth, heightForWidth(kPreferredWidth)};
}

void WrappedLabel::paintEvent(QPaintEvent *)
{
    QTextLayout layout(QString(text()).replace(QLatin1Char('\n'), QChar::LineSeparator), font());
    breakLines(layout, width());
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    layout.draw(&painter, {});
}
