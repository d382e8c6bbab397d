#include "tests/support/run/GuiTestMain.h"
#include "widgets/ImageButton.h"
#include "widgets/ImageView.h"

#include <QSignalSpy>

class TestImageButton final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsItsAlternateImageWhilePressed();
    void clicksByMouseAndKey();
    void hasTheSizeOfItsImage();
    void showsAnImageAndNothingForAnUnknownName();
};

void TestImageButton::showsItsAlternateImageWhilePressed()
{
    ImageButton button;
    button.setImageName(QStringLiteral("infoButton"));
    button.setAlternateImageName(QStringLiteral("infoButtonPressed"));
    button.resize(25, 25);
    const QImage normal = button.grab().toImage();
    button.setDown(true);
    QVERIFY(button.grab().toImage() != normal);
    button.setDown(false);
    QCOMPARE(button.grab().toImage(), normal);
}

void TestImageButton::clicksByMouseAndKey()
{
    ImageButton button;
    button.resize(25, 25);
    QSignalSpy clicked(&button, &ImageButton::clicked);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Space);
    QCOMPARE(clicked.size(), 2);
}

void TestImageButton::hasTheSizeOfItsImage()
{
    ImageButton button;
    button.setImageName(QStringLiteral("welcomeHome"));
    QCOMPARE(button.sizeHint(), QSize(160, 160));
}

void TestImageButton::showsAnImageAndNothingForAnUnknownName()
{
    ImageView view;
    view.resize(48, 48);
    const QImage empty = view.grab().toImage();
    view.setImageName(QStringLiteral("no such drawing"));
    QCOMPARE(view.grab().toImage(), empty);
    view.setImageName(QStringLiteral("welcomeCheckGreen"));
    QVERIFY(view.grab().toImage() != empty);
    QCOMPARE(view.sizeHint(), QSize(48, 48));
}

VANTOR_GUI_TEST_MAIN(TestImageButton)
#include "tst_ImageButton.moc"
