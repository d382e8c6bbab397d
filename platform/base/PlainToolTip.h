#pragma once

#include <QString>

/// Text for a tool tip that must show it unchanged. A tool tip reads a text that looks like markup
/// as markup, and loads the pictures that the markup names; the name of a file may look like
/// markup.
inline QString plainToolTip(const QString &text)
{
    if (text.isEmpty())
        return {};
    return QStringLiteral("<qt><p style='white-space:pre'>%1</p></qt>").arg(text.toHtmlEscaped());
}
