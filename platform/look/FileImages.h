#pragma once

#include <QByteArray>
#include <QString>

/// The kind of content that a file's name suggests, in the word that icon themes use
/// ("video-x-generic"). Looks at the name alone. The first call reads the MIME database: any thread
/// but the main one.
QString genericIconName(const QByteArray &fileName);

/// The program's drawing (see Images.h) for such a word; a plain document where the program has no
/// drawing for it.
QString imageNameForGenericIcon(const QString &iconName);
