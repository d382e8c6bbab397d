#pragma once

#include <QtGlobal>

/// The most memory that this process has held resident so far, in bytes; 0 where the system does
/// not say.
qint64 peakResidentBytes();
