#pragma once

/// Gives this process its own mounts, which the rest of the system does not see. An ordinary user
/// becomes the administrator of a user namespace, in which his files still belong to him. For child
/// processes with one thread. False, with errno, where the system does not allow it.
bool enterMountNamespace();
