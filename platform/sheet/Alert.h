#pragma once

#include "platform/sheet/AlertContent.h"

#include <functional>

class QWidget;

/// Gets the index of the pressed button in the alert's list.
using AlertCompletion = std::function<void(int button)>;

/// Shows the alert as a sheet of the window that holds `host` (see Sheet.h), so a second alert
/// waits for the first. Returns at once. Main thread only.
void presentAlert(QWidget &host, const Alert &alert, AlertCompletion completion = {});
