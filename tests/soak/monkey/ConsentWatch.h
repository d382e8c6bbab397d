#pragma once

#include "slices/page/SliceSelection.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <chrono>
#include <functional>
#include <optional>

class PanelButton;

/// Sees every press on a button that destroys, and works out by itself which of them can have been
/// meant: those that begin when the button has been there for longer than a double click takes and
/// a glance. Keeps what was chosen at the moment of such a press. Main thread only.
class ConsentWatch final : public QObject
{
    Q_OBJECT

public:
    using Choice = SliceSelection::Choice;

    /// `choice` tells what is chosen now.
    explicit ConsentWatch(std::function<Choice()> choice);

    /// A reader takes this long.
    void pass(std::chrono::milliseconds time) { m_passed += time; }

    /// What the last press consented to; nothing when there was none on this question, or when it
    /// came too early. The consent is used up by this.
    std::optional<Choice> takeConsent();
    /// Presses that came too early.
    int earlyPresses() const { return m_early; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void comesUp(PanelButton &button);
    void isPressed(const PanelButton &button);
    bool canBeRead() const;

    std::function<Choice()> m_choice;
    QPointer<PanelButton> m_button;
    QElapsedTimer m_since;
    std::chrono::milliseconds m_passed{0};
    std::optional<Choice> m_consent;
    int m_early = 0;
};
