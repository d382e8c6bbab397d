#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>

/// A display of the test's own with a window manager, which the test can end before the programs
/// that use it. Main thread only. A step that fails ends the test.
class VirtualDisplay final
{
public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay &) = delete;
    VirtualDisplay &operator=(const VirtualDisplay &) = delete;

    /// What a program finds in DISPLAY.
    QString name() const { return m_name; }
    /// All that the display shows now, in bytes that differ where the picture differs.
    QByteArray picture() const;
    /// Presses and releases keys one after the other, by their names.
    bool press(const QStringList &keys) const;
    /// Ends the display as a crash would.
    void kill();

private:
    QTemporaryDir m_folder;
    QProcess m_server;
    QProcess m_manager;
    QString m_name;
};
