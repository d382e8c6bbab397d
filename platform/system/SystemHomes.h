#pragma once

/// Whether every home of this system has a folder "Library" and is laid out accordingly, also one
/// that lacks the folder.
bool homesHaveALibrary();
