#pragma once

#include <QAbstractButton>
#include <QSlider>

/// A round button with the sign for playing, or for pausing while it plays. Takes no focus.
/// Main thread only.
class PlayButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit PlayButton(QWidget *parent);

    void setIsPlaying(bool isPlaying);
    /// Lets what lies under the button be seen. The button can still be pressed.
    void setIsFaded(bool isFaded);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isPlaying = false;
    bool m_isFaded = false;
};

/// A thin line with a round handle that goes where it is pressed. Takes no focus. Main thread only.
class PositionSlider final : public QSlider
{
    Q_OBJECT

public:
    explicit PositionSlider(QWidget *parent);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void moveTo(double x);
};
