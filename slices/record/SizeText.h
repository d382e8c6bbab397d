#pragma once

#include <QString>

/// The size text of a slice that holds nothing.
inline constexpr auto kEmptySize = u"Empty";

/// Shortens a size text to three significant digits: "1.234 GB" becomes "1.23 GB". A text that
/// begins with "Zero" stays as it is; only the full stop counts as a decimal separator.
QString threeDigitString(const QString &text);
