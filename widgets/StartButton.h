#pragma once

#include <QAbstractButton>

class TextField;

/// The round button over the middle of the pie: a disc with a large main text and a small detail
/// text below it, which its page sets. Starts disabled; the page enables it once it has appeared.
///
/// For the mouse only the circle counts: a press inside shows the pressed disc until the button is
/// released, and a release inside triggers. The corners of the square let clicks through to what
/// lies below. With the keyboard, Space triggers when it is released, Return at once. Main thread
/// only.
class StartButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit StartButton(QWidget *parent = nullptr);

    /// The large caption; its field stays centred, one line of its current font high.
    TextField &mainText() { return *m_mainText; }
    const TextField &mainText() const { return *m_mainText; }

    /// The small caption. May be hidden.
    TextField &detailText() { return *m_detailText; }
    const TextField &detailText() const { return *m_detailText; }

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The button's action.
    void triggered();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    double cornerRadius() const;
    bool isInside(const QPointF &position) const;
    void makeMainText();
    void makeDetailText();
    void layOutTexts();
    void paintRing(const QColor &color, double thickness);
    void updateAccessibleName();
    void setHovered(bool isHovered);

    TextField *m_mainText = nullptr;
    TextField *m_detailText = nullptr;
    bool m_isHovered = false;
    bool m_showsFocus = false; ///< the focus came by keyboard
};
