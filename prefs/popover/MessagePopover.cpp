#include "prefs/popover/MessagePopover.h"

#include "platform/look/Fonts.h"
#include "prefs/popover/COICOPopoverView.h"
#include "prefs/popover/MessageField.h"
#include "prefs/popover/Popover.h"

#include <QAccessible>
#include <cmath>

namespace {

constexpr int kSystemFontSize = 13;

QSize wholePoints(QSizeF size)
{
    return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
}

std::unique_ptr<COICOPopoverView> contentView(const AttributedText &text,
                                              const QColor &backgroundColour, double maxWidth)
{
    auto view = std::make_unique<COICOPopoverView>();
    view->setBackgroundColour(backgroundColour);
    auto *field = new MessageField(text, maxWidth, view.get());
    const PopoverGeometry geometry = PopoverGeometry::forText(field->textSize());
    view->resize(wholePoints(geometry.contentSize));
    field->setGeometry(
        QRect(geometry.textFrame.topLeft().toPoint(), wholePoints(geometry.textFrame.size())));
    return view;
}

/// Makes a screen reader speak the message: the popover takes the keyboard without a focused
/// control.
void announce(Popover &popover, const QString &message)
{
    popover.setAccessibleName(message);
    QAccessibleEvent alert(&popover, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace

Popover *MessagePopover::showRelativeToRect(const QRect &rect, QWidget &view,
                                            Qt::Edge preferredEdge, const QString &string,
                                            float maxWidth)
{
    return showRelativeToRect(rect, view, preferredEdge, string,
                              view.palette().color(QPalette::Base), maxWidth);
}

Popover *MessagePopover::showRelativeToRect(const QRect &rect, QWidget &view,
                                            Qt::Edge preferredEdge, const QString &string,
                                            const QColor &backgroundColour, float maxWidth)
{
    return showRelativeToRect(rect, view, preferredEdge, string, backgroundColour,
                              view.palette().color(QPalette::Text),
                              interfaceFont(Typeface::Light, kSystemFontSize), maxWidth);
}

Popover *MessagePopover::showRelativeToRect(const QRect &rect, QWidget &view,
                                            Qt::Edge preferredEdge, const QString &string,
                                            const QColor &backgroundColour,
                                            const QColor &foregroundColour, const QFont &font,
                                            float maxWidth)
{
    return showRelativeToRect(rect, view, preferredEdge,
                              AttributedText{{string, font, foregroundColour}}, backgroundColour,
                              maxWidth);
}

Popover *MessagePopover::showRelativeToRect(const QRect &rect, QWidget &view,
                                            Qt::Edge preferredEdge,
                                            const std::optional<AttributedText> &attributedString,
                                            const QColor &backgroundColour, float maxWidth)
{
    const AttributedText text = attributedString.value_or(AttributedText());
    auto *popover = new Popover(contentView(text, backgroundColour, static_cast<double>(maxWidth)),
                                view.window());
    popover->showRelativeToRect(rect, view, preferredEdge);
    announce(*popover, text.string());
    return popover;
}
