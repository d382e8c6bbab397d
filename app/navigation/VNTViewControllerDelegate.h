#pragma once

#include "platform/base/WeakReference.h"

#include <QVariant>

class VNTViewController;

/// Moves the wizard on when a page asks for it.
class VNTViewControllerDelegate : public WeaklyReferable
{
public:
    virtual ~VNTViewControllerDelegate() = default;

    /// The page asks to go one page forward, handing `data` to the next one, or one page back.
    virtual void willGoForward(VNTViewController &page, bool forward, const QVariant &data) = 0;
};
