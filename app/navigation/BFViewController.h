#pragma once

/// The appearance calls that a navigation stack sends to those of its view controllers that
/// implement this. Every one is optional. Main thread only.
class BFViewController
{
public:
    virtual ~BFViewController() = default;

    virtual void viewWillAppear(bool /*animated*/) {}
    virtual void viewDidAppear(bool /*animated*/) {}
    virtual void viewWillDisappear(bool /*animated*/) {}
    virtual void viewDidDisappear(bool /*animated*/) {}
};
