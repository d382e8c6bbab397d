#include "largefiles/sheet/TextButton.h"
#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

constexpr QColor kGreen(65, 204, 89);

AttributedText title(const QString &text)
{
    return {TextRun{text, interfaceFont(Typeface::Light, 18), kGreen, Qt::AlignHCenter}};
}

/// A button alone in a white window.
struct Shown
{
    Shown()
    {
        window.setPalette(Qt::white);
        auto *const column = new QVBoxLayout(&window);
        other = new TextButton(&window);
        other->setAttributedTitle(title(QStringLiteral("Other")));
        button = new TextButton(&window);
        button->setAttributedTitle(title(QStringLiteral("Add 1.2 GB")));
        column->addWidget(other);
        column->addWidget(button);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not become active");
        other->setFocus();
    }

    QImage picture() const { return button->grab().toImage(); }
    /// The colour beside the text, inside the background.
    QColor ground() const { return picture().pixelColor(button->width() / 2, 5); }

    QWidget window;
    TextButton *other = nullptr;
    TextButton *button = nullptr;
};

bool hasColour(const QImage &image, const QColor &colour)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (qAbs(pixel.red() - colour.red()) < 40 &&
                qAbs(pixel.green() - colour.green()) < 40 &&
                qAbs(pixel.blue() - colour.blue()) < 40)
                return true;
        }
    }
    return false;
}

} // namespace

class TextButtonTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isItsTitle()
    {
        const Shown shown;
        QCOMPARE(shown.button->text(), QStringLiteral("Add 1.2 GB"));
        QCOMPARE(shown.button->attributedTitle().firstRun()->color, kGreen);
        QVERIFY(hasColour(shown.picture(), kGreen));
        QCOMPARE(shown.ground(), QColor(Qt::white));
    }

    void growsWithItsTitle()
    {
        TextButton button;
        button.setAttributedTitle(title(QStringLiteral("A")));
        const QSize narrow = button.sizeHint();
        QCOMPARE(narrow, QSize(110, 40));
        button.setAttributedTitle(title(QStringLiteral("Add 1,234,567,890 bytes")));
        QVERIFY(button.sizeHint().width() > narrow.width());
        QCOMPARE(button.minimumSizeHint(), button.sizeHint());
    }

    void showsThePointerThePressAndTheFocus()
    {
        const Shown shown;
        const QImage plain = shown.picture();
        shown.button->setFocus();
        QVERIFY(shown.picture() != plain);
        shown.other->setFocus();
        QCOMPARE(shown.picture(), plain);
        QTest::mousePress(shown.button, Qt::LeftButton);
        QVERIFY(shown.ground() != QColor(Qt::white));
        QTest::mouseRelease(shown.button, Qt::LeftButton, {}, QPoint(-5, -5));
    }

    void theSpaceBarAndEnterPressIt()
    {
        const Shown shown;
        const QSignalSpy clicked(shown.button, &QAbstractButton::clicked);
        shown.button->setFocus();
        int presses = 0;
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            QTest::keyClick(shown.button, key);
            QCOMPARE(clicked.size(), ++presses);
        }
    }
};

VANTOR_GUI_TEST_MAIN(TextButtonTest)
#include "tst_TextButton.moc"
