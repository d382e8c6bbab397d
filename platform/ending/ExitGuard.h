#pragma once

/// Keeps threads safe from an end in the midst of their work that is not the program's own. When
/// the connection to the display breaks, the toolkit calls exit(), which destroys static objects
/// that threads still use. As long as this object lives, exit() stops all background work, waits a
/// short while for it, and then ends the process with EXIT_FAILURE and without destroying anything.
/// An exception that nobody catches, such as that of a memory that is full, does the same before it
/// aborts the process.
///
/// One in the program, made by main() after the application object. Static objects that threads use
/// and that are made later must be Indestructible: exit() destroys them before it comes here.
class ExitGuard final
{
public:
    ExitGuard();
    /// From here on exit() has its usual effect: main() itself leaves.
    ~ExitGuard();
    ExitGuard(const ExitGuard &) = delete;
    ExitGuard &operator=(const ExitGuard &) = delete;
};
