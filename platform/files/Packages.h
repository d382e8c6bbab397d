#pragma once

#include <QByteArrayView>

/// Whether a folder of this name is a package: a folder that people take for one file, such as an
/// application, a picture library or a text with attachments. Told by the extension alone, whatever
/// its case; the caller knows that it is a folder. Any thread.
bool isPackageName(QByteArrayView name);
