#pragma once

class QWidget;

/// Sets how many points below the host's top edge its sheets come out. For windows that draw a
/// title band of their own. 0 unless set.
void setSheetDrop(QWidget &host, int points);
int sheetDrop(const QWidget &host);
