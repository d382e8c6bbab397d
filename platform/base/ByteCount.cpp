#include "platform/base/ByteCount.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

struct Unit
{
    quint64 bytes;
    int digits; ///< after the full stop
    const char *name;
};

constexpr std::array kUnits{
    Unit{1'000, 0, "KB"},
    Unit{1'000'000, 1, "MB"},
    Unit{1'000'000'000, 2, "GB"},
    Unit{1'000'000'000'000, 2, "TB"},
    Unit{1'000'000'000'000'000, 2, "PB"},
    Unit{1'000'000'000'000'000'000, 2, "EB"},
};

constexpr std::array<quint64, 3> kPowersOfTen{1, 10, 100};

/// The magnitude in whole steps of the unit's last digit, half a step rounded up.
quint64 stepsOf(quint64 magnitude, const Unit &unit)
{
    const quint64 step = unit.bytes / kPowersOfTen[unit.digits];
    const quint64 rest = magnitude % step;
    return magnitude / step + (rest >= step - rest ? 1 : 0);
}

QString decimalText(quint64 steps, int digits)
{
    QString fraction = QString::number(steps % kPowersOfTen[digits]).rightJustified(digits, u'0');
    while (fraction.endsWith(u'0'))
        fraction.chop(1);
    const QString whole = QString::number(steps / kPowersOfTen[digits]);
    return digits == 0 || fraction.isEmpty() ? whole : whole + u'.' + fraction;
}

} // namespace

QString stringFromByteCount(qint64 bytes)
{
    if (bytes == 0)
        return QStringLiteral("Zero KB");
    const QString sign = bytes < 0 ? QStringLiteral("-") : QString();
    // Negating in unsigned arithmetic keeps the smallest number right.
    const quint64 magnitude =
        bytes < 0 ? 0 - static_cast<quint64>(bytes) : static_cast<quint64>(bytes);
    if (magnitude == 1)
        return sign + QStringLiteral("1 byte");
    if (magnitude < 1000)
        return sign + QString::number(magnitude) + QStringLiteral(" bytes");

    // The first unit in which the rounded figure stays below 1000; the last one takes the rest.
    for (const Unit &unit : kUnits) {
        const quint64 steps = stepsOf(magnitude, unit);
        if (steps < 1000 * kPowersOfTen[unit.digits] || &unit == &kUnits.back())
            return sign + decimalText(steps, unit.digits) + u' ' + QLatin1String(unit.name);
    }
    Q_UNREACHABLE();
}

qint64 sumOfByteCounts(qint64 a, qint64 b)
{
    constexpr qint64 kMost = std::numeric_limits<qint64>::max();
    return a > kMost - b ? kMost : a + b;
}

qint64 byteCountOf(std::uint64_t size)
{
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<qint64>::max());
    return static_cast<qint64>(std::min(size, kMost));
}
