#include "largefiles/sheet/FileTableCellView.h"

#include "largefiles/search/LargeFileList.h"
#include "largefiles/sheet/FileIconNames.h"
#include "platform/look/Fonts.h"
#include "platform/look/Images.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QTableView>

namespace {

constexpr int kMargin = 12;
constexpr int kIconSize = 28;
constexpr int kGap = 12;
constexpr int kNameSize = 15;
constexpr QSize kButtonSize(100, 28);
constexpr int kButtonPadding = 10;
constexpr double kSelectionRadius = 6;
constexpr float kSelectionAlpha = 0.12F;
constexpr QColor kLineColour(238, 241, 244);

void paintGround(QPainter &painter, const QStyleOptionViewItem &option)
{
    if (!(option.state & QStyle::State_Selected)) {
        const int left = option.rect.left() + kMargin + kIconSize + kGap;
        painter.fillRect(left, option.rect.bottom(), option.rect.right() - left - kMargin, 1,
                         kLineColour);
        return;
    }
    QColor accent = QGuiApplication::palette().color(QPalette::Active, QPalette::Highlight);
    accent.setAlphaF(option.state & QStyle::State_Active ? kSelectionAlpha : kSelectionAlpha / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawRoundedRect(option.rect.adjusted(0, 1, 0, -2), kSelectionRadius, kSelectionRadius);
}

} // namespace

FileTableCellView::FileTableCellView(FileIconNames &icons, QTableView *table)
    : QStyledItemDelegate(table), m_icons(icons), m_table(*table)
{
    table->viewport()->installEventFilter(this);
    connect(&icons, &FileIconNames::namesChanged, table->viewport(), qOverload<>(&QWidget::update));
}

QRect FileTableCellView::addButtonRect(const QRect &row)
{
    return {QPoint(row.right() - kMargin - kButtonSize.width(),
                   row.center().y() - kButtonSize.height() / 2),
            kButtonSize};
}

QString FileTableCellView::addButtonImageName(bool isAdded, bool isPressed)
{
    return QStringLiteral("largeFilesSizeButton") +
           (isAdded ? QStringLiteral("Green") : QStringLiteral("Blue")) +
           (isPressed ? QStringLiteral("MouseDown") : QString());
}

void FileTableCellView::paintButton(QPainter &painter, const QRect &row,
                                    const QModelIndex &index) const
{
    const QRect button = addButtonRect(row);
    const bool isAdded = index.data(LargeFileList::IsAddedRole).toBool();
    const bool isPressed = m_isPressed && m_held == index;
    painter.drawPixmap(button, imageNamed(addButtonImageName(isAdded, isPressed),
                                          painter.device()->devicePixelRatioF(), button.size()));
    TextRun title = isAdded ? m_addedAttributes : m_unaddedAttributes;
    title.text = index.data(LargeFileList::SizeStringRole).toString();
    AttributedText{title}.draw(painter, button.adjusted(kButtonPadding, 0, -kButtonPadding, 0));
}

void FileTableCellView::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintGround(*painter, option);
    const QRect &row = option.rect;
    const QRect icon(row.left() + kMargin, row.center().y() - kIconSize / 2, kIconSize, kIconSize);
    const QString name = index.data(Qt::DisplayRole).toString();
    painter->drawPixmap(icon, imageNamed(m_icons.imageName(name.toUtf8()),
                                         painter->device()->devicePixelRatioF(), icon.size()));
    QRect text = row;
    text.setLeft(icon.right() + kGap);
    text.setRight(addButtonRect(row).left() - kGap);
    painter->setFont(interfaceFont(Typeface::Light, kNameSize));
    painter->setPen(option.palette.color(QPalette::Text));
    painter->drawText(text, Qt::AlignVCenter | Qt::TextSingleLine,
                      painter->fontMetrics().elidedText(name, Qt::ElideMiddle, text.width()));
    paintButton(*painter, row, index);
    painter->restore();
}

bool FileTableCellView::isOnButton(QPoint position, const QModelIndex &index) const
{
    return index.isValid() && addButtonRect(m_table.visualRect(index)).contains(position);
}

void FileTableCellView::setPressed(bool isPressed)
{
    m_isPressed = isPressed;
    m_table.viewport()->update();
}

bool FileTableCellView::press(QPoint position)
{
    const QModelIndex index = m_table.indexAt(position);
    if (!isOnButton(position, index))
        return false;
    m_held = index;
    setPressed(true);
    return true;
}

bool FileTableCellView::release(QPoint position)
{
    const QModelIndex index = std::exchange(m_held, {});
    setPressed(false);
    if (isOnButton(position, index))
        Q_EMIT addButtonPressed(index.row());
    return true;
}

/// Pressing a button does not select its row. A press that began on a button belongs to it until
/// the mouse button is released, even when its row is removed meanwhile.
bool FileTableCellView::eventFilter(QObject *watched, QEvent *event)
{
    const auto type = event->type();
    const bool isDown = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    if (!isDown && type != QEvent::MouseButtonRelease && type != QEvent::MouseMove)
        return QStyledItemDelegate::eventFilter(watched, event);
    const auto &mouse = static_cast<QMouseEvent &>(*event);
    const bool isLeft = mouse.button() == Qt::LeftButton;
    if (isDown && isLeft)
        return press(mouse.pos());
    if (!m_held.isValid())
        return false;
    if (type == QEvent::MouseButtonRelease && isLeft)
        return release(mouse.pos());
    if (type == QEvent::MouseMove)
        setPressed(isOnButton(mouse.pos(), m_held));
    return true;
}
