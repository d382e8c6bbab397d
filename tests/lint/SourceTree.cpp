#include "tests/lint/SourceTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

QString sourceFile(const QString &path)
{
    QFile file(QStringLiteral(VANTOR_SOURCE_TREE "/") + path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

QStringList sourcePaths()
{
    static const QStringList written{QStringLiteral("*.h"),   QStringLiteral("*.cpp"),
                                     QStringLiteral("*.txt"), QStringLiteral("*.cmake"),
                                     QStringLiteral("*.md"),  QStringLiteral("*.sh"),
                                     QStringLiteral("*.ui"),  QStringLiteral("*.html"),
                                     QStringLiteral("run"),   QStringLiteral("test")};
    static const QStringList notOurs{QStringLiteral("build"), QStringLiteral("tour")};
    const QDir top(QStringLiteral(VANTOR_SOURCE_TREE));
    QStringList paths = top.entryList(written, QDir::Files);
    for (const QString &folder : top.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (notOurs.contains(folder))
            continue;
        QDirIterator files(top.filePath(folder), written, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext())
            paths << top.relativeFilePath(files.next());
    }
    return paths;
}

QList<SourceText> productSources()
{
    QList<SourceText> sources;
    for (const QString &path : sourcePaths()) {
        SourceText source;
        source.path = path;
        if (source.isCpp() && !source.isBelow("tests") && !source.isBelow("bench"))
            sources << sourceText(path, sourceFile(path));
    }
    return sources;
}

QList<Room> declaredRooms()
{
    QList<Room> rooms;
    for (const QString &path : sourcePaths()) {
        if (!path.endsWith(QStringLiteral("/CMakeLists.txt")))
            continue;
        const QString folder = path.left(path.lastIndexOf(u'/'));
        if (const auto room = House::roomDeclared(folder, sourceFile(path)))
            rooms << *room;
    }
    return rooms;
}
