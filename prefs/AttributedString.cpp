#include "prefs/AttributedString.h"

AttributedString AttributedString::make(const QString &string, const QFont &font,
                                        const QColor &colour)
{
    QTextLayout::FormatRange all;
    all.start = 0;
    all.length = static_cast<int>(string.size());
    all.format.setFont(font);
    all.format.setForeground(colour);
    return {string, {all}};
}
