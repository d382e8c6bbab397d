#pragma once

#include "app/navigation/BFViewController.h"
#include "app/navigation/VNTViewControllerDelegate.h"
#include "app/navigation/ViewController.h"
#include "platform/base/WeakReference.h"

#include <QVariant>

class InterfaceLoader;

/// The base of the wizard's pages. A page's view comes from the interface description that bears
/// the name of the page's own class (which therefore needs Q_OBJECT). A page gets everything else
/// that it works with in its constructor. Main thread only.
class VNTViewController : public ViewController, public BFViewController
{
    Q_OBJECT

public:
    /// The loader must outlive the page.
    explicit VNTViewController(const InterfaceLoader &loader, QObject *parent = nullptr);

    /// Must not be used: a page's description is always the one of its class. Writes a log line and
    /// throws std::logic_error.
    [[noreturn]] void initWithNibName(const QString &nibName) const;

    /// What the page before this one handed over; invalid when it handed over nothing. Set after
    /// viewWillAppear() and before viewDidAppear().
    QVariant data() const { return m_data; }
    void setData(const QVariant &data) { m_data = data; }

    VNTViewControllerDelegate *delegate() const { return m_delegate.get(); }
    void setDelegate(const WeakReference<VNTViewControllerDelegate> &delegate)
    {
        m_delegate = delegate;
    }

    /// Right before the view is made; viewDidLoad() comes right after.
    virtual void viewWillLoad() {}
    void viewDidLoad() override {}

protected:
    /// These ask the delegate, where there is one.
    void goForward(const QVariant &data = {});
    void goBack();

private:
    std::unique_ptr<QWidget> loadView() final;

    const InterfaceLoader &m_loader;
    QVariant m_data;
    WeakReference<VNTViewControllerDelegate> m_delegate;
};
