#pragma once

#include <QString>
#include <cstdint>

/// The text of a byte count as people read file sizes: decimal units, no fraction up to KB, one
/// digit for MB, two above, trailing zeros dropped, rounded half away from zero; "Zero KB" for 0,
/// "1 byte" for 1. Never localised: the size text is cut at its blank and its full stop.
QString stringFromByteCount(qint64 bytes);

/// The sum of two byte counts that are not negative; stops at the largest number instead of
/// overflowing.
qint64 sumOfByteCounts(qint64 a, qint64 b);

/// A size from the file system as a byte count; stops at the largest number.
qint64 byteCountOf(std::uint64_t size);
