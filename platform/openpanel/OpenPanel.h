#pragma once

#include "platform/openpanel/OpenPanelOptions.h"

#include <optional>

class QWidget;

/// Gets the chosen path, absolute, existing at the time of choice; nothing when cancelled.
using OpenPanelCompletion = std::function<void(std::optional<QByteArray> path)>;

/// Lets the user choose one item, in a sheet of the window that holds `host` (see Sheet.h). Returns
/// at once. Main thread only.
void presentOpenPanel(QWidget &host, const OpenPanel &panel, OpenPanelCompletion completion);
