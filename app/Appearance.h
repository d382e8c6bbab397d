#pragma once

class QApplication;

/// Sets the name under which the program's folders are found. Call it before the application object
/// is made.
void nameProgram();

/// Sets the program's name, icon, typeface and palette. They are the same on every desktop: the
/// pages are white with grey type whatever the desktop's own colours are. Call it once, right after
/// the application object was made.
void setUpAppearance(QApplication &application);
