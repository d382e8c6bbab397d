#pragma once

#include <QByteArray>

/// Where an attack takes place: a home with a location that is cleaned and an excluded folder in
/// it, and a folder outside with the same names, so that a step too far finds something to remove.
/// A value.
class AttackGround final
{
public:
    static constexpr int kFolders = 16;
    static constexpr int kFilesInAFolder = 20;
    static constexpr int kFiles = kFolders * kFilesInAFolder;

    explicit AttackGround(const QByteArray &path) : m_path(path) {}

    QByteArray path(const char *relative) const { return m_path + '/' + relative; }
    QByteArray home() const { return path("home"); }
    QByteArray location() const { return path("home/Downloads"); }
    QByteArray excluded() const { return path("home/Downloads/Keep"); }
    QByteArray outside() const { return path("outside"); }

    /// Names in the location and, the same, outside.
    static QByteArray folderName(int number) { return "b/c" + QByteArray::number(number); }
    static QByteArray fileName(int number)
    {
        return folderName(number % kFolders) + "/f" +
               QByteArray::number(number / kFolders % kFilesInAFolder);
    }

    /// Clears all away that is there, and makes the folders, what is chosen and what is outside.
    void makeAnew() const;
    /// How many files outside are gone.
    int missingOutside() const;

private:
    QByteArray m_path;
};
