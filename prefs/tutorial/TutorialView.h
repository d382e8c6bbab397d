#pragma once

#include <QUrl>
#include <QWidget>

/// Shows the tutorial, a local page of texts and pictures. Main thread.
class TutorialView : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Shows nothing when there is no such page.
    virtual void load(const QUrl &page) = 0;
};

/// The view without a web engine.
TutorialView *makeTutorialView(QWidget *parent);
