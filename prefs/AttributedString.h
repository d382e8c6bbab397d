#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QString>
#include <QTextLayout>

/// A text with its fonts and colours: what a message popover shows. A value.
struct AttributedString
{
    QString string;
    QList<QTextLayout::FormatRange> attributes;

    /// The whole text in one font and one colour.
    static AttributedString make(const QString &string, const QFont &font, const QColor &colour);
};
