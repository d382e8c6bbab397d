#include "platform/base/LogText.h"

#include <QList>

namespace {

bool isShown(char32_t character)
{
    const QChar::Category category = QChar::category(character);
    return QChar::isPrint(character) && category != QChar::Separator_Line &&
           category != QChar::Separator_Paragraph;
}

} // namespace

QString logText(const QString &text)
{
    QString shown;
    for (const char32_t character : text.toUcs4()) {
        const QString one = QString::fromUcs4(&character, 1);
        if (isShown(character))
            shown += one;
        else
            for (const char byte : one.toUtf8())
                shown += QLatin1Char('%') + QLatin1String(QByteArray(1, byte).toHex().toUpper());
    }
    return shown;
}

QByteArray logText(const QByteArray &path)
{
    return logText(QString::fromUtf8(path)).toUtf8();
}
