#pragma once

#include "platform/sheet/SheetDrop.h"

#include <QWidget>
#include <functional>

/// Sheets: panels that slide from the top edge over a window and must be answered before the window
/// goes on. They live inside the window, so that they are the same on every window system. There is
/// never a nested event loop. Main thread only.

/// What a sheet ended with, for its completion. Panels may use further values of their own.
inline constexpr int kSheetCancelled = 0;
inline constexpr int kSheetAccepted = 1;

using SheetCompletion = std::function<void(int result)>;
using SheetCancel = std::function<void()>;

/// Shows the panel as a sheet of the host window. While another sheet is up there, the panel waits
/// until that sheet has ended. The sheet has the panel's size if it was given one, otherwise its
/// size hint, but never more than the host has room for.
///
/// The caller goes on owning the panel: the window borrows it while it is up, and then gives it
/// back to its former parent, hidden. The completion is called from the event loop after
/// endSheet(), when the sheet is gone and the focus is back where it was. If the page that had the
/// focus has left in the meantime, the widget that asked for the focus last has it. The completion
/// is never called if the panel or the host dies first.
///
/// Escape calls `cancel`, the panel's own rule; without one the sheet ends with kSheetCancelled.
/// Enter presses the panel's default push button. A key that repeats itself does neither.
/// Meanwhile mouse, Tab, shortcuts and close() do not reach the rest of the window.
///
/// A PanelButton that destroys does not come up under the pointer, and takes only presses that
/// begin when the sheet has stood long enough to be read (see DestructivePressGuard). A panel that
/// has such a button lays it out along its lower edge.
///
/// False, and nothing happens, when the panel is already up or waiting.
bool presentSheet(QWidget &host, QWidget &panel, SheetCompletion completion = {},
                  SheetCancel cancel = {});

/// Ends the sheet that shows this panel, or takes the panel from the queue. For any other panel it
/// does nothing.
void endSheet(QWidget &panel, int result = kSheetCancelled);

/// Whether a sheet is up over this window, sliding in and out included.
bool hasSheet(const QWidget &host);

/// The panel that is up over this window; none while there is none.
QWidget *sheetPanel(const QWidget &host);
