#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

/// The view of a navigation stack: shows other controllers' views and keeps their frames in
/// proportion when it is resized. The views are lent to it: it gives them back before it is
/// destroyed. Main thread only.
class NavigationView final : public QWidget
{
    Q_OBJECT

public:
    explicit NavigationView(QRect frame);
    ~NavigationView() override;

    /// Puts the view in front of the others. The view keeps its frame and its opacity.
    void add(QWidget &page);
    /// Takes the view out. A view that is elsewhere stays there.
    void remove(QWidget &page);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QSize m_laidOut; ///< the size that the pages' frames are for
    std::vector<QPointer<QWidget>> m_pages;
};
