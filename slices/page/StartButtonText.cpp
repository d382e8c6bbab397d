#include "slices/page/StartButtonText.h"

#include "platform/look/Fonts.h"

#include <QCoreApplication>

namespace {

constexpr QColor kNumberColor(148, 148, 148);
constexpr QColor kUnitColor(173, 173, 173);
constexpr int kNumberPoints = 40;
constexpr int kUnitPoints = 30;
constexpr int kWordPoints = 20;

} // namespace

AttributedText startButtonSizeText(const QString &sizeText)
{
    const QString unit = sizeText.section(u' ', -1);
    const QString unitPart = unit == QStringLiteral("bytes") ? QStringLiteral(" B") : u' ' + unit;
    return {{sizeText.section(u' ', 0, 0), interfaceFont(Typeface::Light, kNumberPoints),
             kNumberColor, Qt::AlignHCenter},
            {unitPart, interfaceFont(Typeface::Thin, kUnitPoints), kUnitColor}};
}

AttributedText selectSlicesText()
{
    return {{QCoreApplication::translate("FreeSpaceViewController", "Select Slices"),
             interfaceFont(Typeface::Light, kWordPoints), kNumberColor, Qt::AlignHCenter}};
}
