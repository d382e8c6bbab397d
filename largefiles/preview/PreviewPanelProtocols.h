#pragma once

#include "largefiles/search/File.h"
#include "platform/base/WeakReference.h"

#include <optional>

class PreviewPanel;
class QEvent;

/// Says what a preview panel shows.
class PreviewPanelDataSource : public WeaklyReferable
{
public:
    virtual ~PreviewPanelDataSource() = default;

    virtual int numberOfPreviewItemsInPreviewPanel(PreviewPanel &panel) = 0;
    /// The item at this index, from 0 to the number of items; nothing when it is gone.
    virtual std::optional<File> previewItemAtIndex(PreviewPanel &panel, int index) = 0;
};

/// Gets the events that the panel has no use for.
class PreviewPanelDelegate : public WeaklyReferable
{
public:
    virtual ~PreviewPanelDelegate() = default;

    /// Whether the event was handled.
    virtual bool handleEvent(PreviewPanel &panel, QEvent &event) = 0;
};
