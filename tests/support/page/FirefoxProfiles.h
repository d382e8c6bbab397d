#pragma once

#include <QByteArrayList>
#include <filesystem>
#include <fstream>

/// The text of the file in which Firefox lists its profiles. The profiles' paths are relative to
/// the folder of that file.
inline QByteArray firefoxProfilesText(const QByteArrayList &profiles)
{
    QByteArray text = "[Install4F96D1932A9F858E]\nDefault=" + profiles.value(0) + "\nLocked=1\n\n";
    for (qsizetype i = 0; i < profiles.size(); ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "[Profile" + number + "]\nName=name " + number +
                "\nIsRelative=1\nPath=" + profiles[i] + "\n\n";
    }
    return text + "[General]\nStartWithLastProfile=1\nVersion=2\n";
}

/// Writes this file, and makes the folders around it.
inline void listFirefoxProfiles(const QByteArray &folder, const QByteArrayList &profiles)
{
    const std::filesystem::path place(folder.toStdString());
    std::filesystem::create_directories(place);
    std::ofstream(place / "profiles.ini", std::ios::binary)
        << firefoxProfilesText(profiles).toStdString();
}
