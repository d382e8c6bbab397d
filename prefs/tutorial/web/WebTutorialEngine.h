#pragma once

#include "prefs/tutorial/TutorialEngine.h"

#include <QObject>
#include <memory>

class QWebEngineProfile;

/// The web engine behind the tutorial. It starts with the first view, off the record, and draws
/// without the graphics card: a picture of a page that hardly moves is not worth a driver's faults,
/// and the window that it is part of stays what it is.
class WebTutorialEngine final : public QObject, public TutorialEngine
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VANTOR_TUTORIAL_ENGINE)
    Q_INTERFACES(TutorialEngine)

public:
    WebTutorialEngine();
    ~WebTutorialEngine() override;

    QWidget *makeView(const QUrl &page, TutorialMotion motion, std::function<void(bool)> ended,
                      QWidget *parent) override;
    void shutDown() override;

private:
    std::unique_ptr<QWebEngineProfile> m_profile;
};
