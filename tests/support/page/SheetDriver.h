#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QWidget>

#include "platform/sheet/Sheet.h"

/// What a user reads and presses on the sheet of a window.

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

/// Clicks the button and waits until the sheet is gone.
inline bool pressSheetButton(const QWidget &window, const QString &title)
{
    if (!QTest::qWaitFor([&] { return sheetButton(window, title) != nullptr; }))
        return false;
    const QWidget *panel = sheetPanel(window);
    QTest::mouseClick(sheetButton(window, title), Qt::LeftButton);
    return QTest::qWaitFor([&] { return sheetPanel(window) != panel; });
}
