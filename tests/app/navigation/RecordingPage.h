#pragma once

#include "app/navigation/BFNavigationController.h"
#include "app/navigation/BFNavigationControllerDelegate.h"
#include "app/navigation/BFViewController.h"
#include "app/navigation/ViewController.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QWidget>
#include <functional>

/// What pages and a delegate were told, in order, as "<name> <call> <animated>".
using Calls = QStringList;

inline QString callText(const QString &name, const char *call, bool animated)
{
    return QStringLiteral("%1 %2 %3")
        .arg(name, QLatin1String(call), animated ? QStringLiteral("YES") : QStringLiteral("NO"));
}

/// A page that fills itself with black and writes down which appearance calls it gets.
class RecordingPage final : public ViewController, public BFViewController
{
public:
    RecordingPage(const char *name, Calls &calls) : m_name(QLatin1String(name)), m_calls(calls) {}

    void viewWillAppear(bool animated) override { note("willAppear", animated); }
    void viewDidAppear(bool animated) override
    {
        note("didAppear", animated);
        if (onDidAppear)
            onDidAppear();
    }
    void viewWillDisappear(bool animated) override { note("willDisappear", animated); }
    void viewDidDisappear(bool animated) override { note("didDisappear", animated); }

    std::function<void()> onDidAppear; ///< for a look at that very moment

protected:
    std::unique_ptr<QWidget> loadView() override
    {
        auto view = ViewController::loadView();
        view->setAutoFillBackground(true);
        view->setPalette(QPalette(Qt::black));
        return view;
    }

private:
    void note(const char *call, bool animated) { m_calls.append(callText(m_name, call, animated)); }

    QString m_name;
    Calls &m_calls;
};

class RecordingDelegate final : public BFNavigationControllerDelegate
{
public:
    explicit RecordingDelegate(Calls &calls) : m_calls(calls) {}

    void willShowViewController(BFNavigationController &, ViewController &controller,
                                bool animated) override
    {
        m_shown = &controller;
        m_calls.append(callText(QStringLiteral("delegate"), "willShow", animated));
    }
    void didShowViewController(BFNavigationController &, ViewController &controller,
                               bool animated) override
    {
        m_shown = &controller;
        m_calls.append(callText(QStringLiteral("delegate"), "didShow", animated));
    }

    /// The controller of the last call.
    ViewController *shown() const { return m_shown; }

private:
    Calls &m_calls;
    ViewController *m_shown = nullptr;
};

/// A window on white ground with a stack of root page A, and pages B and C beside it.
struct Wizard
{
    Wizard()
    {
        window.setPalette(QPalette(Qt::white));
        window.resize(200, 160);
        navigation.setDelegate(&delegate);
        navigation.view()->setParent(&window);
        navigation.view()->setPalette(QPalette(Qt::white));
        window.show();
        calls.clear();
    }
    ~Wizard() { navigation.view()->setParent(nullptr); }

    bool isShown(RecordingPage &page)
    {
        return page.view()->parentWidget() == navigation.view() && page.view()->isVisible();
    }
    /// What is seen: 255 is the bare ground, 0 a page at full opacity.
    int gray() { return qGray(window.grab().toImage().pixel(50, 50)); }

    Calls calls;
    RecordingDelegate delegate{calls};
    RecordingPage a{"A", calls};
    RecordingPage b{"B", calls};
    RecordingPage c{"C", calls};
    QWidget window;
    BFNavigationController navigation{QRect(0, 0, 200, 160), &a};
};
