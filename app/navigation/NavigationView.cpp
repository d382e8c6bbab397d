#include "app/navigation/NavigationView.h"

#include "platform/look/ViewAlpha.h"

namespace {

int scaled(int value, int from, int to)
{
    return qRound(static_cast<double>(value) * to / from);
}

/// The frame with all its margins and sizes scaled by the same factors. The edges are scaled, not
/// the widths, so that a view that fills its parent still fills it afterwards.
QRect inProportion(const QRect &frame, QSize from, QSize to)
{
    if (from.isEmpty())
        return {QPoint(), to};
    const QPoint topLeft(scaled(frame.x(), from.width(), to.width()),
                         scaled(frame.y(), from.height(), to.height()));
    const QPoint bottomRight(scaled(frame.x() + frame.width(), from.width(), to.width()),
                             scaled(frame.y() + frame.height(), from.height(), to.height()));
    return {topLeft, QSize(bottomRight.x() - topLeft.x(), bottomRight.y() - topLeft.y())};
}

} // namespace

NavigationView::NavigationView(QRect frame) : m_laidOut(frame.size())
{
    setGeometry(frame);
}

NavigationView::~NavigationView()
{
    for (const QPointer<QWidget> &page : std::exchange(m_pages, {})) {
        if (page && page->parentWidget() == this)
            page->setParent(nullptr);
    }
}

void NavigationView::add(QWidget &page)
{
    // Drawn through a veil, a page that fades costs no more than its own painting.
    setAlphaDrawing(page, AlphaDrawing::Veil);
    page.setParent(this);
    page.raise();
    page.show();
    std::erase(m_pages, &page);
    m_pages.emplace_back(&page);
}

void NavigationView::remove(QWidget &page)
{
    std::erase(m_pages, &page);
    if (page.parentWidget() == this)
        page.setParent(nullptr);
}

void NavigationView::resizeEvent(QResizeEvent *)
{
    for (const QPointer<QWidget> &page : m_pages) {
        if (page && page->parentWidget() == this)
            page->setGeometry(inProportion(page->geometry(), m_laidOut, size()));
    }
    m_laidOut = size();
}
