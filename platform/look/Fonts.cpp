#include "platform/look/Fonts.h"

#include <QFontDatabase>
#include <QStringList>
#include <array>

namespace {

/// From this size on the display cuts are used, whose letters stand closer and are drawn finer.
constexpr int kDisplaySize = 24;

/// Each weight is a real cut; the painter makes none bolder or thinner.
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

/// Makes the five cuts of a design known and gives the name of the family that they form.
QString loadedFamily(const QString &design)
{
    constexpr std::array kCuts{"Thin", "ExtraLight", "Light", "Regular", "Medium"};
    QString family;
    for (const char *cut : kCuts) {
        const int id = QFontDatabase::addApplicationFont(
            QStringLiteral(":/fonts/%1-%2.otf").arg(design, QLatin1String(cut)));
        // The common family comes first, then one for the cut alone.
        const QStringList families = QFontDatabase::applicationFontFamilies(id);
        if (family.isEmpty() && !families.isEmpty())
            family = families.constFirst();
    }
    return family;
}

QString familyFor(int size)
{
    static const QString textFamily = loadedFamily(QStringLiteral("Inter"));
    static const QString displayFamily = loadedFamily(QStringLiteral("InterDisplay"));
    return size < kDisplaySize ? textFamily : displayFamily;
}

} // namespace

QFont interfaceFont(Typeface face, int size)
{
    QFont font;
    const QString family = familyFor(size);
    if (!family.isEmpty())
        font.setFamilies({family});
    font.setPixelSize(size);
    font.setWeight(weightOf(face));
    // The desktop's setting may widen every letter to whole pixels, which makes thin type look bad.
    // This setting keeps horizontal strokes sharp and the spacing true, and it looks the same on
    // every desktop.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}
