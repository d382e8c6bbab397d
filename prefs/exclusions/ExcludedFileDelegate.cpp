#include "prefs/exclusions/ExcludedFileDelegate.h"

#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "prefs/exclusions/ExcludedFilesModel.h"

#include <QGuiApplication>
#include <QPainter>

namespace {

constexpr int kRowHeight = 48;
constexpr int kSizeWidth = 120;
constexpr int kMargin = 14;
constexpr int kIconSize = 28;
constexpr int kIconGap = 12;
constexpr int kNameSize = 14;
constexpr int kPlaceSize = 12;
constexpr int kSizeSize = 13;
constexpr int kNameTop = 6;
constexpr int kNameHeight = 20;
constexpr int kPlaceHeight = 16;
constexpr double kFaint = 0.45;
constexpr float kSelectionAlpha = 0.14F;
constexpr double kSelectionRadius = 4;
constexpr QColor kLineColour(236, 239, 242);
constexpr QColor kPlaceColour(128, 134, 141);

/// A selected row is a pale, rounded patch over both columns; the others have a line below.
void paintGround(QPainter &painter, const QStyleOptionViewItem &option, int column)
{
    if (!(option.state & QStyle::State_Selected)) {
        painter.fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1),
                         kLineColour);
        return;
    }
    QColor accent = QGuiApplication::palette().color(QPalette::Active, QPalette::Highlight);
    accent.setAlphaF(option.state & QStyle::State_Active ? kSelectionAlpha : kSelectionAlpha / 2);
    const bool isFirst = column == 0;
    const bool isLast = column == ExcludedFilesModel::ColumnCount - 1;
    const int beyond = option.rect.width(); // nothing is round on a side where the row goes on
    painter.setClipRect(option.rect);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawRoundedRect(option.rect.adjusted(isFirst ? 0 : -beyond, 0, isLast ? 0 : beyond, -1),
                            kSelectionRadius, kSelectionRadius);
}

void paintText(QPainter &painter, const QRect &rect, const QFont &font, const QColor &colour,
               const QString &text, Qt::TextElideMode elide, Qt::Alignment alignment)
{
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(rect, alignment | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, elide, rect.width()));
}

void paintEntry(QPainter &painter, const QRect &rect, const QColor &colour,
                const QModelIndex &index)
{
    const QRect icon(rect.left() + kMargin, rect.center().y() - kIconSize / 2, kIconSize,
                     kIconSize);
    painter.drawPixmap(icon, imageNamed(index.data(ExcludedFilesModel::ImageNameRole).toString(),
                                        painter.device()->devicePixelRatioF(), icon.size()));
    QRect line(icon.right() + kIconGap, rect.top() + kNameTop, 0, kNameHeight);
    line.setRight(rect.right() - kMargin);
    paintText(painter, line, interfaceFont(Typeface::Regular, kNameSize), colour,
              index.data().toString(), Qt::ElideMiddle, Qt::AlignVCenter);
    line.setRect(line.left(), line.bottom() + 1, line.width(), kPlaceHeight);
    paintText(painter, line, interfaceFont(Typeface::Light, kPlaceSize), kPlaceColour,
              index.data(ExcludedFilesModel::PlaceRole).toString(), Qt::ElideMiddle,
              Qt::AlignVCenter);
}

} // namespace

void ExcludedFileDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    const QColor colour = option.palette.color(QPalette::Text);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintGround(*painter, option, index.column());
    if (!index.data(ExcludedFilesModel::IsUsableRole).toBool())
        painter->setOpacity(kFaint);
    if (index.column() == ExcludedFilesModel::PathColumn)
        paintEntry(*painter, option.rect, colour, index);
    else
        paintText(*painter, option.rect.adjusted(0, 0, -kMargin, 0),
                  interfaceFont(Typeface::Light, kSizeSize), colour, index.data().toString(),
                  Qt::ElideRight, Qt::AlignRight | Qt::AlignVCenter);
    painter->restore();
}

QSize ExcludedFileDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {kSizeWidth, kRowHeight};
}
