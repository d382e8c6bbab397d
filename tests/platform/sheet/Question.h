#pragma once

#include "platform/sheet/Alert.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/SheetHost.h"

inline constexpr int kDoubleClick = 400;
inline constexpr std::chrono::milliseconds kWait{kDoubleClick + 250};
inline constexpr int kNoAnswer = -1;
inline constexpr int kCancel = 0;
inline constexpr int kDelete = 1;

/// A window with a question whose clock stands still but for pass().
struct Question
{
    Question() { ask(); }

    void ask()
    {
        answer = kNoAnswer;
        presentAlert(host.window,
                     {AlertStyle::Critical,
                      QStringLiteral("Deleting Files"),
                      QStringLiteral("Are you sure?"),
                      {{QStringLiteral("Cancel"), AlertButtonRole::Cancel},
                       {QStringLiteral("&Delete"), AlertButtonRole::Destructive}}},
                     [this](int button) { answer = button; });
        guard().findChild<QTimer *>()->setInterval(kReadingTime);
        QCoreApplication::processEvents(); // for the layout
    }

    DestructivePressGuard &guard() const { return *pressGuard(host.window); }
    QAbstractButton &button(const char *title) const
    {
        return *sheetButton(host.window, QLatin1String(title));
    }
    QAbstractButton &destroys() const { return button("Delete"); }
    QPoint placeOf(const QWidget &widget) const
    {
        return widget.mapTo(&host.window, widget.rect().center());
    }

    void click(QPoint place)
    {
        QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, place);
    }
    void clickDelete() { click(placeOf(destroys())); }

    /// The answer, once what has been pressed has had its effect.
    int answered() const
    {
        QCoreApplication::processEvents(); // an answered sheet leaves at the next turn
        return answer;
    }

    SheetHost host;
    int answer = kNoAnswer;
};
