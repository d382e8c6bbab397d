#pragma once

/// Whether the desktop blends windows, so that a window may be translucent and have soft edges. A
/// window that is translucent without it shows black where it should show nothing. Asks the
/// display each time. Main thread only.
bool isCompositing();
