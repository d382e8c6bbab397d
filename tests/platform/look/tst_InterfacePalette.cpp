#include "platform/look/InterfacePalette.h"
#include "tests/support/run/GuiTestMain.h"

#include <cmath>

namespace {

double linear(double component)
{
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// From 1 (the same colour) to 21 (black on white); text is easy to read from 4.5 on.
double contrast(const QColor &first, const QColor &second)
{
    const double lighter = std::max(luminance(first), luminance(second));
    const double darker = std::min(luminance(first), luminance(second));
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace

class TestInterfacePalette final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTextLegible_data();
    void keepsTextLegible();
    void isLightOnADarkDesktop();
    void tellsDisabledTextsApart();
};

void TestInterfacePalette::keepsTextLegible_data()
{
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("ground");
    QTest::newRow("window") << QPalette::WindowText << QPalette::Window;
    QTest::newRow("list") << QPalette::Text << QPalette::Base;
    QTest::newRow("every other row") << QPalette::Text << QPalette::AlternateBase;
    QTest::newRow("button") << QPalette::ButtonText << QPalette::Button;
    QTest::newRow("selection") << QPalette::HighlightedText << QPalette::Highlight;
    QTest::newRow("tool tip") << QPalette::ToolTipText << QPalette::ToolTipBase;
    QTest::newRow("empty field") << QPalette::PlaceholderText << QPalette::Base;
    QTest::newRow("link") << QPalette::Link << QPalette::Window;
}

void TestInterfacePalette::keepsTextLegible()
{
    QFETCH(QPalette::ColorRole, text);
    QFETCH(QPalette::ColorRole, ground);
    const QPalette colors = interfacePalette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        const double seen = contrast(colors.color(group, text), colors.color(group, ground));
        QVERIFY2(seen >= 4.5, qPrintable(QString::number(seen)));
    }
}

void TestInterfacePalette::isLightOnADarkDesktop()
{
    QApplication::setPalette(QPalette(Qt::black));
    const QPalette before = QApplication::palette();
    QApplication::setPalette(interfacePalette());
    const QWidget view;
    for (const QPalette::ColorRole role :
         {QPalette::Window, QPalette::Base, QPalette::Button, QPalette::AlternateBase}) {
        QVERIFY(before.color(role).lightness() < 200);
        QVERIFY2(view.palette().color(role).lightness() > 240, qPrintable(QString::number(role)));
    }
}

void TestInterfacePalette::tellsDisabledTextsApart()
{
    const QPalette colors = interfacePalette();
    QVERIFY(contrast(colors.color(QPalette::Disabled, QPalette::WindowText),
                     colors.color(QPalette::Disabled, QPalette::Window)) <
            contrast(colors.color(QPalette::WindowText), colors.color(QPalette::Window)) / 2);
}

VANTOR_GUI_TEST_MAIN(TestInterfacePalette)
#include "tst_InterfacePalette.moc"
