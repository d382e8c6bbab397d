#pragma once

#include <QWidget>

/// Shows one of the application's drawings in its middle, sharp on every screen. Main thread only.
class ImageView final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString imageName READ imageName WRITE setImageName)

public:
    explicit ImageView(QWidget *parent = nullptr);

    QString imageName() const { return m_imageName; }
    /// A name for which there is no drawing shows nothing.
    void setImageName(const QString &name);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_imageName;
};
