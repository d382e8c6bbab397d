#pragma once

/// Whether a program takes connections at a local socket, by its absolute path. False only when it
/// is certain that none does. Connects, says nothing and goes; never waits. Any thread but the main
/// one, because the path may lie on any disk.
bool isSocketServed(const char *path);
