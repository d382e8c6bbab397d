#pragma once

#include <QtPlugin>
#include <functional>

class QUrl;
class QWidget;

/// Whether a page may move.
enum class TutorialMotion { Moving, Still };

/// What the plugin with the web engine offers. Plain functions: the plugin shares no class of
/// Vantor's own with the program. Main thread only.
class TutorialEngine
{
public:
    virtual ~TutorialEngine() = default;

    /// A new view that shows this page of the resources, and nothing from anywhere else. `ended` is
    /// called with whether the page was loaded; and with false, at any later time, when what shows
    /// it has ended by itself. The view must be gone before shutDown().
    virtual QWidget *makeView(const QUrl &page, TutorialMotion motion,
                              std::function<void(bool isShown)> ended, QWidget *parent) = 0;

    /// Ends everything that the views have started. Call it before the application object is
    /// destroyed.
    virtual void shutDown() = 0;
};

#define VANTOR_TUTORIAL_ENGINE "invalid.vantor.TutorialEngine/1"
Q_DECLARE_INTERFACE(TutorialEngine, VANTOR_TUTORIAL_ENGINE)
