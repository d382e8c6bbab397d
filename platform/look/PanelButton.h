#pragma once

#include <QPushButton>

/// How a panel's button looks; isDefault() tells which button is the default one.
enum class PanelButtonLook { Plain, Destructive };

/// A push button of the alerts and panels: wide, calm, with a clear ring when it has the focus.
/// Main thread only.
class PanelButton final : public QPushButton
{
    Q_OBJECT

public:
    /// Room around the button's face, inside its frame, for the focus ring.
    static constexpr int kRing = 3;

    PanelButton(const QString &title, PanelButtonLook look, QWidget *parent = nullptr);

    PanelButtonLook look() const { return m_look; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    /// Only the space bar presses the button that has the focus; Enter presses the default button.
    void keyPressEvent(QKeyEvent *event) override;

private:
    QColor faceColor() const;
    QColor textColor() const;
    void paintRing(QPainter &painter, const QRectF &face) const;

    PanelButtonLook m_look;
};
