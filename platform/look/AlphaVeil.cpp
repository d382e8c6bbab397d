#include "platform/look/AlphaVeil.h"

#include "platform/look/OwnThreadPainting.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

AlphaVeil::AlphaVeil(QWidget &target) : QWidget(target.parentWidget()), m_target(&target)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    target.installEventFilter(this);
    follow();
}

void AlphaVeil::setCover(double cover)
{
    m_cover = cover;
    // Under a full cover Qt need not paint what lies below.
    setAttribute(Qt::WA_OpaquePaintEvent, cover >= 1);
    update();
}

void AlphaVeil::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setOpacity(m_cover);
    const QWidget &behind = *parentWidget();
    painter.fillRect(event->rect(), rowByRowBrush(behind.palette().color(behind.backgroundRole())));
}

bool AlphaVeil::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
    case QEvent::ZOrderChange:
        follow();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void AlphaVeil::follow()
{
    if (!m_target || m_target->parentWidget() != parentWidget())
        return;
    setGeometry(m_target->geometry());
    lieAboveTarget();
    setVisible(!m_target->isHidden());
}

void AlphaVeil::lieAboveTarget()
{
    const QObjectList &pile = parentWidget()->children(); // the lowest first
    for (auto above = pile.indexOf(m_target) + 1; above < pile.size(); ++above) {
        auto *const sibling = qobject_cast<QWidget *>(pile.at(above));
        if (!sibling || sibling->isWindow())
            continue;
        if (sibling != this)
            stackUnder(sibling);
        return;
    }
    raise();
}
