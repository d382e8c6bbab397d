#pragma once

class QApplication;

/// The name under which the program's folders are found; before the application object is made.
void nameProgram();

/// The program's name, icon, typeface and palette, the same on every desktop: the pages are white
/// with grey type whatever the desktop's own colours are. Once, right after the application object
/// was made.
void setUpAppearance(QApplication &application);
