#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>

/// Owns one view, made on first use. The view belongs to its controller wherever it is shown. Code
/// that puts it into a window takes it out again (setParent(nullptr)). The view is deleted with the
/// controller. Main thread only.
class ViewController : public QObject
{
    Q_OBJECT

public:
    explicit ViewController(QObject *parent = nullptr);
    ~ViewController() override;

    /// The view; made by loadView() when it is first asked for. Never null.
    QWidget *view();
    bool isViewLoaded() const { return !m_view.isNull(); }

protected:
    /// Makes the view. A plain empty one unless overridden.
    virtual std::unique_ptr<QWidget> loadView();
    /// Called once, right after the view was made.
    virtual void viewDidLoad() {}

private:
    QPointer<QWidget> m_view;
};
