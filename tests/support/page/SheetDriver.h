#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QWidget>
#include <chrono>

#include "platform/sheet/DestructivePressGuard.h"
#include "platform/sheet/Sheet.h"

/// What a user reads and presses on the sheet of a window.

/// Long enough for every sheet.
inline constexpr std::chrono::hours kReadingTime{1};

/// The texts of the sheet's labels, one per line; empty without sheet.
inline QString sheetText(const QWidget &window)
{
    QStringList texts;
    if (const QWidget *panel = sheetPanel(window)) {
        for (const QLabel *label : panel->findChildren<QLabel *>())
            texts.append(label->text());
    }
    return texts.join(u'\n');
}

/// The sheet's button with this title; null when it is not there (yet).
inline QAbstractButton *sheetButton(const QWidget &window, const QString &title)
{
    if (const QWidget *panel = sheetPanel(window)) {
        for (auto *button : panel->findChildren<QAbstractButton *>()) {
            if (button->text().remove(u'&') == title && button->isVisible())
                return button;
        }
    }
    return nullptr;
}

/// What keeps early presses from the sheet of the window; null without sheet.
inline DestructivePressGuard *pressGuard(const QWidget &window)
{
    const QWidget *panel = sheetPanel(window);
    const QWidget *overlay = panel ? panel->parentWidget()->parentWidget() : nullptr;
    return overlay ? overlay->findChild<DestructivePressGuard *>() : nullptr;
}

/// The user has read the sheet: it stands, and has stood so long that its buttons take all presses.
/// A test does not have to wait for that time.
inline bool letSheetBeRead(const QWidget &window)
{
    return QTest::qWaitFor([&] {
        DestructivePressGuard *const presses = pressGuard(window);
        if (presses)
            presses->pass(kReadingTime);
        return presses && presses->takesPresses();
    });
}

/// Reads the sheet, clicks the button and waits until the sheet is gone.
inline bool pressSheetButton(const QWidget &window, const QString &title)
{
    if (!QTest::qWaitFor([&] { return sheetButton(window, title) != nullptr; }) ||
        !letSheetBeRead(window))
        return false;
    const QWidget *panel = sheetPanel(window);
    QTest::mouseClick(sheetButton(window, title), Qt::LeftButton);
    return QTest::qWaitFor([&] { return sheetPanel(window) != panel; });
}
