#include "platform/Fonts.h"

#include <QFontDatabase>
#include <QStringList>
#include <array>

namespace {

/// The weights are real cuts, none is made bolder or thinner by the painter.
QFont::Weight weightOf(Typeface face)
{
    switch (face) {
    case Typeface::UltraLight:
        return QFont::Thin;
    case Typeface::Thin:
        return QFont::ExtraLight;
    case Typeface::Light:
        return QFont::Light;
    case Typeface::Regular:
        return QFont::Normal;
    case Typeface::Medium:
        return QFont::Medium;
    }
    Q_UNREACHABLE();
}

QString loadedFamily()
{
    constexpr std::array kCuts{"Thin", "ExtraLight", "Light", "Regular", "Medium"};
    QString family;
    for (const char *cut : kCuts) {
        const int id = QFontDatabase::addApplicationFont(
            QStringLiteral(":/fonts/Inter-%1.otf").arg(QLatin1String(cut)));
        const QStringList families = QFontDatabase::applicationFontFamilies(id);
        if (family.isEmpty() && !families.isEmpty())
            family = families.constFirst();
    }
    return family;
}

} // namespace

QFont interfaceFont(Typeface face, int size)
{
    static const QString family = loadedFamily();
    QFont font;
    if (!family.isEmpty())
        font.setFamilies({family});
    font.setPixelSize(size);
    font.setWeight(weightOf(face));
    return font;
}
