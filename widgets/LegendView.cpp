#include "widgets/LegendView.h"

#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "widgets/AttributedText.h"

#include <QPainter>
#include <array>
#include <cmath>

namespace {

constexpr int kTextSize = 14;
constexpr int kMarkGap = 8;   ///< from a mark to its text
constexpr int kEntryGap = 32; ///< from one entry to the next
constexpr QColor kTextColor(110, 110, 110);

struct Entry
{
    QString mark;
    AttributedText text;
};

std::array<Entry, 2> entries()
{
    const QFont font = interfaceFont(Typeface::Regular, kTextSize);
    const auto entry = [&font](const QString &mark, const QString &text) {
        return Entry{mark, {TextRun{text, font, kTextColor}}};
    };
    return {entry(QStringLiteral("legendSelected"), LegendView::tr("Selected, will be cleaned")),
            entry(QStringLiteral("legendNotSelected"), LegendView::tr("Not selected"))};
}

double widthOf(const Entry &entry)
{
    return imageSize(entry.mark).width() + kMarkGap + entry.text.size().width();
}

double widthOf(const std::array<Entry, 2> &both)
{
    return widthOf(both[0]) + kEntryGap + widthOf(both[1]);
}

} // namespace

LegendView::LegendView(QWidget *parent) : QWidget(parent)
{
    const auto both = entries();
    setAccessibleName(tr("Coloured slices: %1. Grey slices: %2.")
                          .arg(both[0].text.string(), both[1].text.string()));
}

QSize LegendView::sizeHint() const
{
    const auto both = entries();
    return {static_cast<int>(std::ceil(widthOf(both))),
            static_cast<int>(std::ceil(both[0].text.size().height()))};
}

QSize LegendView::minimumSizeHint() const
{
    return sizeHint();
}

void LegendView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const auto both = entries();
    double x = std::round((width() - widthOf(both)) / 2);
    for (const Entry &entry : both) {
        const QSize mark = imageSize(entry.mark);
        painter.drawPixmap(QPointF(x, std::round((height() - mark.height()) / 2.0)),
                           imageNamed(entry.mark, devicePixelRatioF()));
        const double textX = x + mark.width() + kMarkGap;
        entry.text.draw(painter, QRectF(textX, 0, std::ceil(entry.text.size().width()), height()));
        x += widthOf(entry) + kEntryGap;
    }
}
