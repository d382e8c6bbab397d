#pragma once

class BFNavigationController;
class ViewController;

/// Is told before and after a navigation stack changes what it shows. Both calls are optional.
class BFNavigationControllerDelegate
{
public:
    virtual ~BFNavigationControllerDelegate() = default;

    virtual void willShowViewController(BFNavigationController & /*navigation*/,
                                        ViewController & /*controller*/, bool /*animated*/)
    {
    }
    virtual void didShowViewController(BFNavigationController & /*navigation*/,
                                       ViewController & /*controller*/, bool /*animated*/)
    {
    }
};
