#pragma once

#include <QList>
#include <QWidget>

class LabelController;

/// The widgets that a page's view holds directly, lowest first. Those deeper inside follow them.
QList<QWidget *> directSubviews(const QWidget &view);

/// Hands the controller the labels "freeLabel", "usedLabel" and "totalLabel" of a page.
void connectSizeLabels(LabelController &controller, QWidget &view);
