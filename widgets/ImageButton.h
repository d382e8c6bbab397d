#pragma once

#include <QAbstractButton>

/// A button that shows one of the application's drawings, and another one while it is pressed. It
/// has no border; a thin ring shows the focus. Main thread only.
class ImageButton final : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(QString imageName READ imageName WRITE setImageName)
    Q_PROPERTY(QString alternateImageName READ alternateImageName WRITE setAlternateImageName)

public:
    explicit ImageButton(QWidget *parent = nullptr);

    QString imageName() const { return m_imageName; }
    void setImageName(const QString &name);

    /// The image that is shown while the button is held down; without one, the image itself is
    /// shown.
    QString alternateImageName() const { return m_alternateImageName; }
    void setAlternateImageName(const QString &name);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_imageName;
    QString m_alternateImageName;
};
