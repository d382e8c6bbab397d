#pragma once

class QWidget;

/// How many points below the host's top edge its sheets come out: for windows that draw a title
/// band of their own. 0 unless set.
void setSheetDrop(QWidget &host, int points);
int sheetDrop(const QWidget &host);
