#include "platform/look/FlattenView.h"

#include "tests/support/run/GuiTestMain.h"

#include <QScrollArea>
#include <QScrollBar>

class TestFlattenView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNothingForAViewOfZeroSize();
    void holdsTheSubviews();
    void holdsWhatIsVisibleInAScrollView();
};

namespace {

void fill(QWidget &widget, const QColor &color)
{
    widget.setAutoFillBackground(true);
    widget.setPalette(QPalette(color));
}

} // namespace

void TestFlattenView::isNothingForAViewOfZeroSize()
{
    QWidget view;
    view.resize(0, 0);
    QVERIFY(flattenWithSubviews(view).isNull());
}

void TestFlattenView::holdsTheSubviews()
{
    QWidget view;
    view.resize(40, 30);
    fill(view, Qt::red);
    QWidget subview(&view);
    subview.setGeometry(10, 10, 10, 10);
    fill(subview, Qt::blue);
    const QPixmap picture = flattenWithSubviews(view);
    QCOMPARE(picture.deviceIndependentSize(), QSizeF(40, 30));
    QCOMPARE(picture.toImage().pixelColor(5, 5), QColor(Qt::red));
    QCOMPARE(picture.toImage().pixelColor(15, 15), QColor(Qt::blue));
}

void TestFlattenView::holdsWhatIsVisibleInAScrollView()
{
    QScrollArea area;
    area.setFrameShape(QFrame::NoFrame);
    area.resize(100, 100);
    auto *const content = new QWidget(&area);
    content->resize(80, 400);
    fill(*content, Qt::red);
    QWidget lower(content);
    lower.setGeometry(0, 200, 80, 200);
    fill(lower, Qt::blue);
    area.setWidget(content);
    area.show();
    QCOMPARE(flattenWithSubviews(area).toImage().pixelColor(10, 50), QColor(Qt::red));
    area.verticalScrollBar()->setValue(250);
    QCOMPARE(flattenWithSubviews(area).toImage().pixelColor(10, 50), QColor(Qt::blue));
}

VANTOR_GUI_TEST_MAIN(TestFlattenView)
#include "tst_FlattenView.moc"
