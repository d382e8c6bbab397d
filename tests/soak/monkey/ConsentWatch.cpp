#include "tests/soak/monkey/ConsentWatch.h"

#include "platform/look/PanelButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QStyleHints>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kGlance{250};

PanelButton *destroyerIn(QObject *watched)
{
    auto *const button = qobject_cast<PanelButton *>(watched);
    return button && button->look() == PanelButtonLook::Destructive ? button : nullptr;
}

bool isPress(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::Shortcut:
        return true;
    case QEvent::KeyPress: {
        const auto &key = static_cast<const QKeyEvent &>(event);
        return !key.isAutoRepeat() && (key.key() == Qt::Key_Space || key.key() == Qt::Key_Select);
    }
    default:
        return false;
    }
}

} // namespace

ConsentWatch::ConsentWatch(std::function<Choice()> choice) : m_choice(std::move(choice))
{
    qApp->installEventFilter(this);
}

std::optional<ConsentWatch::Choice> ConsentWatch::takeConsent()
{
    return std::exchange(m_consent, {});
}

bool ConsentWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (PanelButton *const button = destroyerIn(watched)) {
        if (event->type() == QEvent::Show)
            comesUp(*button);
        else if (isPress(*event))
            isPressed(*button);
    }
    const bool isBack =
        event->type() == QEvent::WindowActivate && m_button && watched == m_button->window();
    if (isBack)
        m_since.start();
    return false;
}

/// The filter that was installed last is asked first: the sheet has one of its own, which takes
/// presses away.
void ConsentWatch::comesUp(PanelButton &button)
{
    qApp->removeEventFilter(this);
    qApp->installEventFilter(this);
    m_button = &button;
    m_since.start();
    m_passed = {};
    m_consent.reset();
}

void ConsentWatch::isPressed(const PanelButton &button)
{
    const bool isMeant = &button == m_button && canBeRead();
    m_early += isMeant ? 0 : 1;
    m_consent = isMeant ? std::optional(m_choice()) : std::nullopt;
}

bool ConsentWatch::canBeRead() const
{
    const milliseconds doubleClick(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    return milliseconds(m_since.elapsed()) + m_passed >= doubleClick + kGlance;
}
