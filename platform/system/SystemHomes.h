#pragma once

/// Whether homes of this system have the layout with a folder "Library". This then holds for every
/// home, even if it lacks the folder.
bool homesHaveALibrary();
