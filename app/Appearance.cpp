#include "app/Appearance.h"

#include "platform/look/Fonts.h"
#include "platform/look/InterfacePalette.h"

#include <QApplication>
#include <QIcon>
#include <QStyleFactory>

namespace {

constexpr int kTextPoints = 14;

} // namespace

void nameProgram()
{
    QCoreApplication::setApplicationName(QStringLiteral("vantor"));
}

void setUpAppearance(QApplication &application)
{
    nameProgram();
    QApplication::setApplicationDisplayName(QStringLiteral("Vantor"));
    QApplication::setApplicationVersion(QStringLiteral(VANTOR_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("invalid.vantor.Vantor"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/vantor.svg")));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(interfacePalette());
    application.setFont(interfaceFont(Typeface::Regular, kTextPoints));
}
