#pragma once

#include <QPointer>
#include <QWidget>

/// Lies over its target, as the target's next sibling, in the parent's background colour. Follows
/// the target wherever it goes, lets all input through, and dies with the target or the parent.
/// Main thread only.
class AlphaVeil final : public QWidget
{
    Q_OBJECT

public:
    /// The target needs a parent.
    explicit AlphaVeil(QWidget &target);

    /// 0 to 1: how much of the target is covered.
    void setCover(double cover);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();
    void lieAboveTarget();

    QPointer<QWidget> m_target;
    double m_cover = 0;
};
