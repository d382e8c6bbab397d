#include "slices/record/SizeText.h"

namespace {

constexpr int kDigits = 3;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

QString threeDigitString(const QString &text)
{
    if (text.startsWith(QStringLiteral("Zero")))
        return text;
    QString number;
    int digitsSeen = 0;
    for (const QChar c : text) {
        if (!isDigit(c) && c != u'.')
            break;
        if (digitsSeen < kDigits)
            number += c;
        if (c != u'.')
            ++digitsSeen; // a digit that is dropped still counts
    }
    return number + u' ' + text.section(u' ', -1);
}
