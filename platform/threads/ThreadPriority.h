#pragma once

/// How a background thread shares processors and disks with the rest of the desktop.
enum class ThreadPriority {
    Usual,
    /// The window, and every other program, comes first: for work that asks for all processors and
    /// for the whole disk, and that nobody's files depend on.
    BehindTheWindow
};

/// Sets it for the calling thread, for good, and for the threads that it starts from now on. Where
/// the system refuses, the thread stays as it is. Any thread but the main one.
void setThreadPriority(ThreadPriority priority);
