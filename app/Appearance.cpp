#include "app/Appearance.h"

#include "platform/Fonts.h"

#include <QApplication>
#include <QIcon>
#include <QPalette>
#include <QStyleFactory>

namespace {

constexpr int kTextPoints = 14;

QPalette lightPalette()
{
    QPalette palette(QColor(0xf4, 0xf5, 0xf7));
    palette.setColor(QPalette::Window, Qt::white);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf8, 0xfa));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, QColor(0x3c, 0x3f, 0x45));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9e, 0xa6));
    palette.setColor(QPalette::Highlight, QColor(0x2e, 0x7e, 0xe3));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x2e, 0x7e, 0xe3));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0xb4, 0xb7, 0xbd));
    return palette;
}

} // namespace

void setUpAppearance(QApplication &application)
{
    QApplication::setApplicationName(QStringLiteral("vantor"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantor"));
    QApplication::setApplicationVersion(QStringLiteral(VANTOR_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("invalid.vantor.Vantor"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/vantor.svg")));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(lightPalette());
    application.setFont(interfaceFont(Typeface::Regular, kTextPoints));
}
