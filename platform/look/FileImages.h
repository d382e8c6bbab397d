#pragma once

#include <QByteArray>
#include <QString>

/// What kind of content a file's name speaks of, as an icon theme's word for it
/// ("video-x-generic"). Looks at the name alone. The first call reads the MIME database: any thread
/// but the main one.
QString genericIconName(const QByteArray &fileName);

/// The program's drawing (see Images.h) for such a word; a plain document for one that it has no
/// drawing for.
QString imageNameForGenericIcon(const QString &iconName);
