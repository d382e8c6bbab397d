#pragma once

/// Gives this process mounts of its own, which the rest of the system does not see. Whoever is not
/// the administrator becomes that of a user namespace, where his files stay his own. For child
/// processes with one thread. False, with errno, where the system does not allow it.
bool enterMountNamespace();
