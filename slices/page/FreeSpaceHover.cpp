// What the page of the slices offers for the slice under the pointer: to explain it, and to show
// its places in the file manager.

#include "platform/desktop/Workspace.h"
#include "platform/files/ExistingPlaces.h"
#include "platform/sheet/Alert.h"
#include "prefs/popover/MessagePopover.h"
#include "slices/page/CleaningText.h"
#include "slices/page/FreeSpaceViewController.h"
#include "slices/page/SliceHoverButtons.h"
#include "widgets/ImageButton.h"

namespace {

constexpr float kPopoverWidth = 200;

} // namespace

/// The pie moves away below the pointer.
void FreeSpaceViewController::forgetHover()
{
    m_hoverLook.stop();
    m_hoverButtons->setCurrentHoverIndex(SliceHoverButtons::kNoSlice);
    m_hoverButtons->hide();
}

void FreeSpaceViewController::didHoverOverSliceAtIndex(PieChart &, int index)
{
    if (index == m_hoverButtons->currentHoverIndex())
        return;
    forgetHover();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    m_hoverButtons->setCurrentHoverIndex(index);
    m_hoverButtons->placeOnSlice(index, kSliceCount, RevealOffer::No);
    offerReveal(index);
}

/// Old updates are there on few machines: shown where they are, and when the disk has said so while
/// the pointer stays.
void FreeSpaceViewController::offerReveal(int index)
{
    const auto offer = [this, index] {
        m_hoverButtons->placeOnSlice(index, kSliceCount, RevealOffer::Yes);
    };
    switch (sliceCatalogue()[index].kind) {
    case SliceKind::Trash:
    case SliceKind::Downloads:
    case SliceKind::MailDownloads:
        offer();
        break;
    case SliceKind::OldIos:
        if (m_home.layout().kind() == HomeKind::Library)
            m_hoverLook.run(lookForPlaces(placesOf(index), [offer](const FileUrls &places) {
                if (!places.isEmpty())
                    offer();
            }));
        else if (!placesOf(index).isEmpty())
            offer(); // of a home that was looked at, all places are there
        break;
    default:
        break;
    }
}

FileUrls FreeSpaceViewController::placesOf(int index) const
{
    return m_selection.records().at(index)->fileURLs().value_or(FileUrls());
}

/// Work for another thread: which of the places are there.
LatestJob::Work
FreeSpaceViewController::lookForPlaces(const FileUrls &places,
                                       std::function<void(const FileUrls &)> then) const
{
    return [&calls = m_services.calls, &access = m_services.access, places,
            then = std::move(then)](const std::stop_token &stop) {
        return [then, existing = existingPlaces(calls, access, places, stop)] { then(existing); };
    };
}

void FreeSpaceViewController::showInfo()
{
    const int index = m_hoverButtons->currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    if (m_home.layout().programs().empty())
        explain(index);
    else
        m_describing.ask(m_home.programLook([this, index] {
            if (m_hoverButtons->currentHoverIndex() == index)
                explain(index);
        }));
}

void FreeSpaceViewController::explain(int index)
{
    const SliceKind kind = sliceCatalogue()[index].kind;
    ImageButton &button = *m_hoverButtons->infoButton();
    MessagePopover::showRelativeToRect(
        button.rect(), button, Qt::BottomEdge,
        m_home.layout().details(kind) + inUseText(m_home.programsInUse(kind)), kPopoverWidth);
}

void FreeSpaceViewController::showInFinder()
{
    const int index = m_hoverButtons->currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice || !m_home.isKnown())
        return;
    if (index == indexOf(SliceKind::Trash))
        showTrash();
    else
        m_reveal.ask(lookForPlaces(placesOf(index), [this](const FileUrls &places) {
            m_services.workspace.activateFileViewerSelectingUrls(places);
        }));
}

/// A home with a Library always has its trash; any other gets the folder with the first file that
/// is thrown away.
void FreeSpaceViewController::showTrash()
{
    const FileUrl trash = m_home.layout().trashFolder();
    if (m_home.layout().kind() == HomeKind::Library) {
        m_services.workspace.openUrl(trash);
        return;
    }
    m_reveal.ask(lookForPlaces({trash}, [this, trash](const FileUrls &places) {
        if (places.isEmpty())
            showMessage({.messageText = tr("The Trash is empty.")});
        else
            m_services.workspace.openUrl(trash);
    }));
}
