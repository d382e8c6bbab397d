#pragma once

#include <QByteArray>

/// The home folder that the password database names for the user who started the program. What the
/// environment says does not count. Raw bytes of a path. Ends the program (assertion "pw") when the
/// database does not know the user. Any thread.
QByteArray RealHomeDirectory();
