#pragma once

/// From now on, and for good, the system itself lets every opening of a folder by this process fail
/// with this errno. For child processes (see ChildProcess.h). False where the system cannot do
/// that.
bool failEveryOpenedFolder(int error);
