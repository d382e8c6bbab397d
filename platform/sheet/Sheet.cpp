#include "platform/sheet/Sheet.h"

#include "platform/sheet/SheetOverlay.h"

#include <QAccessible>
#include <QApplication>
#include <deque>

namespace {

/// The sheets of one window, one up and the others waiting; a child of the window.
class SheetQueue final : public QObject
{
    Q_OBJECT

public:
    explicit SheetQueue(QWidget *host) : QObject(host), m_host(*host) {}

    bool isUp() const { return m_overlay != nullptr; }
    QWidget *panel() const { return m_overlay ? m_overlay->panel() : nullptr; }
    bool holds(const QWidget &panel) const;
    void add(QWidget &panel, SheetCompletion completion, SheetCancel cancel);
    void end(QWidget &panel, int result);

private:
    struct Waiting
    {
        QPointer<QWidget> panel;
        SheetCompletion completion;
        SheetCancel cancel;
    };

    void showNext();
    void finish(int result);
    void drop();
    void deleteOverlay();

    QWidget &m_host;
    std::deque<Waiting> m_waiting;
    QPointer<SheetOverlay> m_overlay;
    SheetCompletion m_completion;
};

bool SheetQueue::holds(const QWidget &panel) const
{
    const auto isPanel = [&panel](const Waiting &waiting) { return waiting.panel == &panel; };
    return this->panel() == &panel || std::any_of(m_waiting.begin(), m_waiting.end(), isPanel);
}

void SheetQueue::add(QWidget &panel, SheetCompletion completion, SheetCancel cancel)
{
    m_waiting.push_back({&panel, std::move(completion), std::move(cancel)});
    if (!isUp())
        showNext();
}

void SheetQueue::showNext()
{
    while (!m_waiting.empty() && !m_waiting.front().panel)
        m_waiting.pop_front();
    if (m_waiting.empty())
        return;
    Waiting next = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_completion = std::move(next.completion);
    if (!next.cancel)
        next.cancel = [this, panel = next.panel] {
            if (panel)
                end(*panel, kSheetCancelled);
        };
    m_overlay = new SheetOverlay(m_host, *next.panel, std::move(next.cancel));
    connect(next.panel, &QObject::destroyed, this, &SheetQueue::drop);
    m_overlay->slideIn();
    QAccessibleEvent shown(&m_overlay->frame(), QAccessible::DialogStart);
    QAccessible::updateAccessibility(&shown);
}

void SheetQueue::end(QWidget &panel, int result)
{
    std::erase_if(m_waiting, [&panel](const Waiting &waiting) { return waiting.panel == &panel; });
    if (this->panel() != &panel || m_overlay->isSlidingOut())
        return;
    connect(m_overlay, &SheetOverlay::slidOut, this, [this, result] { finish(result); });
    m_overlay->slideOut();
}

void SheetQueue::finish(int result)
{
    const SheetCompletion completion = std::exchange(m_completion, nullptr);
    deleteOverlay();
    const QPointer<SheetQueue> self = this; // the completion may close the window for good
    if (completion)
        completion(result);
    if (self && !isUp())
        showNext();
}

/// The panel is being destroyed while its sheet is up.
void SheetQueue::drop()
{
    m_overlay->forgetPanel();
    m_completion = nullptr;
    deleteOverlay();
    showNext();
}

void SheetQueue::deleteOverlay()
{
    if (QWidget *const panel = m_overlay->panel())
        panel->disconnect(this);
    QAccessibleEvent gone(&m_overlay->frame(), QAccessible::DialogEnd);
    QAccessible::updateAccessibility(&gone);
    m_overlay->release();
    m_overlay->deleteLater();
    m_overlay = nullptr;
}

SheetQueue *queueOf(const QWidget &host)
{
    return host.window()->findChild<SheetQueue *>(QString(), Qt::FindDirectChildrenOnly);
}

SheetQueue *queueThatHolds(const QWidget &panel)
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        SheetQueue *const queue = queueOf(*window);
        if (queue && queue->holds(panel))
            return queue;
    }
    return nullptr;
}

} // namespace

bool presentSheet(QWidget &host, QWidget &panel, SheetCompletion completion, SheetCancel cancel)
{
    if (queueThatHolds(panel))
        return false;
    SheetQueue *queue = queueOf(host);
    if (!queue)
        queue = new SheetQueue(host.window());
    queue->add(panel, std::move(completion), std::move(cancel));
    return true;
}

void endSheet(QWidget &panel, int result)
{
    if (SheetQueue *const queue = queueThatHolds(panel))
        queue->end(panel, result);
}

bool hasSheet(const QWidget &host)
{
    const SheetQueue *const queue = queueOf(host);
    return queue != nullptr && queue->isUp();
}

QWidget *sheetPanel(const QWidget &host)
{
    const SheetQueue *const queue = queueOf(host);
    return queue ? queue->panel() : nullptr;
}

#include "Sheet.moc"
