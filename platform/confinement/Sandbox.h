#pragma once

#include <QString>
#include <QStringList>

/// A program that is let into a sandbox, and what it finds there. A value.
struct SandboxedProgram
{
    QString program;
    QStringList arguments;
    QString file;         ///< what it may read; it finds it at Sandbox::fileInside()
    int descriptor = -1;  ///< that same file, open; the sandbox inherits it under this number
    QString outputFolder; ///< may be written; it finds it at Sandbox::kOutput; empty for none
    QStringList folders;  ///< read-only, under their own paths, if they are there
    QString socket;       ///< it finds it at Sandbox::kSocket; empty for none
};

/// The sandbox in which desktops run programs that look into files: bubblewrap. The program has no
/// network, sees no other process, and finds nothing but the system's programs and libraries, the
/// one file and the output folder. vantor-enter lets it in, if the file that is shown there is the
/// one that was opened. A value; any thread.
struct Sandbox
{
    static inline const QString kOutput = QStringLiteral("/output");
    static inline const QString kSocket = QStringLiteral("/run/socket");

    /// Empty where it is not installed.
    static QString installedBubblewrap();
    /// vantor-enter, in the folder of this program.
    static QString besideTheProgram();
    /// Where a program finds its file: the name says no more than the kind of the file.
    static QString fileInside(const QString &file);

    bool isInstalled() const { return !bubblewrap.isEmpty(); }
    /// Whether the system lets us make sandboxes; tries it. Blocks; not on the main thread.
    bool isUsable() const;
    /// The arguments with which bubblewrap runs the program.
    QStringList arguments(const SandboxedProgram &wanted) const;

    QString bubblewrap = installedBubblewrap();
    QString entrance = besideTheProgram();
};
