#pragma once

#include <QString>

/// Text for a tool tip that shows it as it is. A tool tip takes what looks like markup for markup,
/// and loads the pictures that it names; names of files may look like anything.
inline QString plainToolTip(const QString &text)
{
    if (text.isEmpty())
        return {};
    return QStringLiteral("<qt><p style='white-space:pre'>%1</p></qt>").arg(text.toHtmlEscaped());
}
