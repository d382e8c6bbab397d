#pragma once

#include "platform/base/WeakReference.h"

class QuickLookTableView;

/// A table tells its delegate that its rows should be previewed.
class QuickLookTableViewDelegate : public WeaklyReferable
{
public:
    virtual ~QuickLookTableViewDelegate() = default;

    /// The space bar was pressed in the table. False when that means nothing to the delegate; the
    /// table then handles the key itself.
    virtual bool didPressSpacebarForTableView(QuickLookTableView &) { return false; }
};
