#pragma once

#include <QtGlobal>

/// The largest resident memory that this process has had so far, in bytes; 0 where the system does
/// not tell.
qint64 peakResidentBytes();
