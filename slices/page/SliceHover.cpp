#include "slices/page/SliceHover.h"

#include "platform/desktop/Workspace.h"
#include "platform/files/ExistingLocations.h"
#include "platform/sheet/Alert.h"
#include "prefs/popover/MessagePopover.h"
#include "slices/page/CleaningText.h"
#include "slices/page/HomeWatch.h"
#include "slices/page/SliceHoverButtons.h"
#include "widgets/ImageButton.h"

namespace {

constexpr float kPopoverWidth = 200;

} // namespace

SliceHover::SliceHover(PieChart &chart, Services services, QObject *parent)
    : QObject(parent), m_services(std::move(services)), m_buttons(*new SliceHoverButtons(chart))
{
    connect(m_buttons.infoButton(), &ImageButton::clicked, this, &SliceHover::showInfo);
    connect(m_buttons.showInFinderButton(), &ImageButton::clicked, this, &SliceHover::showInFinder);
}

void SliceHover::forget()
{
    m_offering.stop();
    m_buttons.setCurrentHoverIndex(SliceHoverButtons::kNoSlice);
    m_buttons.hide();
}

void SliceHover::stop()
{
    forget();
    m_reveal.stop();
    m_describing.stop();
}

void SliceHover::moveTo(int index)
{
    if (index == m_buttons.currentHoverIndex())
        return;
    forget();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    m_buttons.setCurrentHoverIndex(index);
    m_buttons.placeOnSlice(index, kSliceCount, RevealOffer::No);
    offerReveal(index);
}

/// A location that only few machines have is offered after the disk has said that it exists, if the
/// pointer is still there.
void SliceHover::offerReveal(int index)
{
    const auto offer = [this, index] {
        m_buttons.placeOnSlice(index, kSliceCount, RevealOffer::Yes);
    };
    switch (sliceCatalogue()[index].reveal) {
    case RevealPolicy::Never:
        break;
    case RevealPolicy::Always:
        offer();
        break;
    case RevealPolicy::WhenThere:
        if (m_services.home.layout().kind() == HomeKind::Library)
            m_offering.run(lookForLocations(locationsOf(index), [offer](const FileUrls &locations) {
                if (!locations.isEmpty())
                    offer();
            }));
        else if (!locationsOf(index).isEmpty())
            offer(); // a survey names only locations that exist
        break;
    }
}

FileUrls SliceHover::locationsOf(int index) const
{
    return m_services.selection.records().at(index)->fileURLs().value_or(FileUrls());
}

/// Work for another thread: finds which of the locations exist.
BackgroundTask<OwnersEnd::Abandon>
SliceHover::lookForLocations(const FileUrls &locations,
                             std::function<void(const FileUrls &)> then) const
{
    return [&calls = m_services.calls, &access = m_services.access, locations,
            then = std::move(then)](const std::stop_token &stop) {
        return [then, existing = existingLocations(calls, access, locations, stop)] {
            then(existing);
        };
    };
}

void SliceHover::showInfo()
{
    const int index = m_buttons.currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    if (m_services.home.layout().programs().empty())
        explain(index);
    else
        m_describing.run(m_services.home.programLook([this, index] {
            if (m_buttons.currentHoverIndex() == index)
                explain(index);
        }));
}

void SliceHover::explain(int index)
{
    ImageButton &button = *m_buttons.infoButton();
    MessagePopover::showRelativeToRect(button.rect(), button, Qt::BottomEdge, descriptionOf(index),
                                       kPopoverWidth);
}

QString SliceHover::descriptionOf(int index) const
{
    const SliceKind kind = sliceCatalogue()[index].kind;
    const HomeWatch &home = m_services.home;
    const HomeLayout &layout = home.layout();
    const QString text =
        layout.details(kind) + inUseText(home.programsInUse(kind), home.programsSeen()) +
        keptText(home.keptContents(kind)) + outOfReachText(layout.outOfReach(kind));
    const bool isWatched = kind == SliceKind::Cache && layout.kind() == HomeKind::Freedesktop &&
                           !layout.locations(kind)->isEmpty();
    return isWatched ? text + cacheInUseText(home.programsSeen()) : text;
}

void SliceHover::showInFinder()
{
    const int index = m_buttons.currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice || !m_services.home.isKnown())
        return;
    if (index == indexOf(SliceKind::Trash))
        showTrash();
    else
        m_reveal.run(lookForLocations(locationsOf(index), [this](const FileUrls &locations) {
            m_services.workspace.activateFileViewerSelectingUrls(locations);
        }));
}

/// A home with a Library always has its trash; in any other home the folder is made for the first
/// file that is thrown away.
void SliceHover::showTrash()
{
    const FileUrl trash = m_services.home.layout().trashFolder();
    if (m_services.home.layout().kind() == HomeKind::Library) {
        m_services.workspace.openUrl(trash);
        return;
    }
    m_reveal.run(lookForLocations({trash}, [this, trash](const FileUrls &locations) {
        if (locations.isEmpty())
            m_services.tell({.messageText = tr("The Trash is empty.")});
        else
            m_services.workspace.openUrl(trash);
    }));
}
