#include "app/navigation/BFNavigationController.h"

#include "app/navigation/BFNavigationControllerDelegate.h"
#include "app/navigation/BFViewController.h"
#include "app/navigation/NavigationView.h"
#include "platform/base/Log.h"
#include "platform/look/Pace.h"
#include "platform/look/ViewAlpha.h"

#include <QTimer>
#include <stdexcept>

namespace {

using Appearance = void (BFViewController::*)(bool animated);

void send(ViewController *controller, Appearance message, bool animated)
{
    if (auto *const page = dynamic_cast<BFViewController *>(controller))
        (page->*message)(animated);
}

} // namespace

BFNavigationController::BFNavigationController(QRect frame, ViewController *rootViewController,
                                               QObject *parent)
    : ViewController(parent), m_frame(frame)
{
    m_viewControllers = {rootViewController ? rootViewController : new ViewController(this)};
    showRoot();
}

BFNavigationController::BFNavigationController() : BFNavigationController(QRect(), nullptr)
{
}

std::unique_ptr<QWidget> BFNavigationController::loadView()
{
    return std::make_unique<NavigationView>(m_frame);
}

NavigationView &BFNavigationController::navigationView()
{
    return *static_cast<NavigationView *>(view());
}

void BFNavigationController::showRoot()
{
    ViewController *const root = topViewController();
    root->view()->setGeometry(view()->rect());
    navigationView().add(*root->view());
    send(root, &BFViewController::viewWillAppear, false);
}

void BFNavigationController::pushViewController(ViewController *controller, Animated animated)
{
    if (!controller)
        throw std::invalid_argument("a navigation stack holds no missing view controller");
    ViewController *const top = topViewController();
    m_viewControllers.append(controller);
    navigateFromViewController(top, controller, animated, Direction::Push);
}

ViewController *BFNavigationController::popViewController(Animated animated)
{
    if (m_viewControllers.size() == 1)
        return nullptr;
    ViewController *const removed = m_viewControllers.takeLast();
    navigateFromViewController(removed, topViewController(), animated, Direction::Pop);
    return removed;
}

QList<ViewController *> BFNavigationController::popToViewController(ViewController *controller,
                                                                    Animated animated)
{
    ViewController *const top = topViewController();
    const auto position = m_viewControllers.indexOf(controller);
    if (position < 0 || controller == top)
        return {};
    QList<ViewController *> removed = m_viewControllers.mid(position + 1);
    m_viewControllers.resize(position + 1);
    navigateFromViewController(top, controller, animated, Direction::Pop);
    return removed;
}

QList<ViewController *> BFNavigationController::popToRootViewController(Animated animated)
{
    if (m_viewControllers.size() == 1)
        return {};
    QList<ViewController *> removed = m_viewControllers.mid(1);
    m_viewControllers.resize(1);
    navigateFromViewController(removed.constLast(), topViewController(), animated, Direction::Pop);
    return removed;
}

void BFNavigationController::setViewControllers(const QList<ViewController *> &controllers,
                                                Animated animated)
{
    if (controllers.isEmpty() || controllers.contains(nullptr))
        throw std::invalid_argument("a navigation stack is never empty");
    ViewController *const top = topViewController();
    ViewController *const next = controllers.constLast();
    const bool isBelow = next != top && m_viewControllers.contains(next);
    m_viewControllers = controllers;
    navigateFromViewController(top, next, animated, isBelow ? Direction::Pop : Direction::Push);
}

// Forward and back look the same: the direction is passed on but not used.
void BFNavigationController::navigateFromViewController(ViewController *from, ViewController *to,
                                                        Animated animated, Direction)
{
    const bool isAnimated = animated == Animated::Yes;
    to->view(); // a page is loaded before it hears that it will appear
    if (m_delegate)
        m_delegate->willShowViewController(*this, *to, isAnimated);
    send(to, &BFViewController::viewWillAppear, isAnimated);
    send(from, &BFViewController::viewWillDisappear, isAnimated);
    if (isAnimated) {
        fade(from, to);
        return;
    }
    qCInfo(logVantor, "%s", __func__);
    exchange(from, to);
    complete(from, to, isAnimated);
}

void BFNavigationController::fade(ViewController *from, ViewController *to)
{
    setAlphaDrawing(*to->view(), AlphaDrawing::Veil);
    to->view()->setGeometry(view()->rect());
    setAlphaValue(*to->view(), 0);
    animateAlphaValue(*from->view(), 0);
    QTimer::singleShot(paced(kPause), Qt::PreciseTimer, this,
                       [this, outgoing = QPointer(from), incoming = QPointer(to)] {
                           if (incoming)
                               finishFade(outgoing, incoming);
                       });
}

void BFNavigationController::finishFade(ViewController *from, ViewController *to)
{
    if (from)
        navigationView().remove(*from->view());
    to->view()->setGeometry(view()->rect());
    navigationView().add(*to->view());
    animateAlphaValue(*to->view(), 1);
    complete(from, to, true);
}

void BFNavigationController::exchange(ViewController *from, ViewController *to)
{
    navigationView().add(*to->view());
    if (from != to)
        navigationView().remove(*from->view());
}

void BFNavigationController::complete(ViewController *from, ViewController *to, bool animated)
{
    if (m_delegate)
        m_delegate->didShowViewController(*this, *to, animated);
    send(to, &BFViewController::viewDidAppear, animated);
    send(from, &BFViewController::viewDidDisappear, animated);
}
