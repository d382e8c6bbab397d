#pragma once

#include "app/navigation/ViewController.h"

#include <QList>
#include <QRect>
#include <chrono>

class BFNavigationControllerDelegate;
class NavigationView;

enum class Animated { No, Yes };

/// A stack of view controllers of which the top one is shown, filling the stack's own view. An
/// animated change fades the old page out and, kPause after it began, the new one in.
///
/// The stack owns none of its controllers; one that dies leaves the stack's pending changes, but
/// must have been popped before. It holds at least one at all times. Main thread only.
class BFNavigationController final : public ViewController
{
    Q_OBJECT

public:
    /// From the start of an animated change to the moment when the new page comes in.
    static constexpr std::chrono::milliseconds kPause{750};

    /// A stack with the root, whose view fills the frame from now on; without a root a plain empty
    /// one is made. The root gets viewWillAppear(false); its viewDidAppear is the caller's to send.
    BFNavigationController(QRect frame, ViewController *rootViewController,
                           QObject *parent = nullptr);
    /// A stack of a plain root, without a frame.
    BFNavigationController();

    /// A copy; the root first.
    QList<ViewController *> viewControllers() const { return m_viewControllers; }
    ViewController *topViewController() const { return m_viewControllers.constLast(); }
    ViewController *visibleViewController() const { return topViewController(); }

    /// Not owned and not watched: set it to null before it dies.
    BFNavigationControllerDelegate *delegate() const { return m_delegate; }
    void setDelegate(BFNavigationControllerDelegate *delegate) { m_delegate = delegate; }

    /// Throws std::invalid_argument for null; the stack is as before then.
    void pushViewController(ViewController *controller, Animated animated);
    /// The removed top; null, and nothing happens, when only the root is there.
    ViewController *popViewController(Animated animated);
    /// The removed ones, lowest first; empty, and nothing happens, when the controller is the top
    /// already or is not on the stack.
    QList<ViewController *> popToViewController(ViewController *controller, Animated animated);
    QList<ViewController *> popToRootViewController(Animated animated);
    /// Throws std::invalid_argument for an empty list or a null in it.
    void setViewControllers(const QList<ViewController *> &controllers,
                            Animated animated = Animated::No);

private:
    enum class Direction { Push, Pop };

    std::unique_ptr<QWidget> loadView() override;
    NavigationView &navigationView();
    void showRoot();
    void navigateFromViewController(ViewController *from, ViewController *to, Animated animated,
                                    Direction direction);
    void fade(ViewController *from, ViewController *to);
    void finishFade(ViewController *from, ViewController *to);
    void exchange(ViewController *from, ViewController *to);
    void complete(ViewController *from, ViewController *to, bool animated);

    QRect m_frame;
    QList<ViewController *> m_viewControllers;
    BFNavigationControllerDelegate *m_delegate = nullptr;
};
