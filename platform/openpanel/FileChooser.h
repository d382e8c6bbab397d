#pragma once

#include "platform/openpanel/DialogParts.h"
#include "platform/openpanel/OpenPanelOptions.h"

#include <QFileDialog>
#include <QSet>

class ChooserItems;
class FileIcons;

/// The toolkit's own file dialog as part of a panel: without buttons of its own, menus, or any
/// command that changes a file. It only tells what is chosen; the panel decides whether that is
/// allowed. Main thread only.
///
/// For this it rearranges the parts of the dialog. Another release of the toolkit may build its
/// dialog in another way. When a part cannot be found, the dialog stays as it is, and the user
/// chooses from it all the same.
///
/// Keys in the list: Enter chooses, Right goes into a folder, Left and Backspace go to its parent,
/// Ctrl+H shows hidden items.
class FileChooser final : public QFileDialog
{
    Q_OBJECT

public:
    /// Starts in that folder, which must exist. A thread of the dialog reads the icons: they must
    /// outlive the dialog.
    FileChooser(const OpenPanel &panel, const QString &start, FileIcons &icons,
                const DialogPartNames &partNames, QWidget *parent);

    /// The absolute path that is chosen now: the typed path; without one, the selected item;
    /// without that, the folder itself.
    QString chosenPath() const;

    /// Replaces the folders that stand beside the list. Each must exist and its disk must answer,
    /// because the dialog asks the disks again on the main thread. The computer stands below them;
    /// at first it stands alone.
    void offerPlaces(const QList<QUrl> &places);
    void focusList();

    /// Whether a thread of the dialog is reading a folder. The dialog's destructor waits for that
    /// thread, and so for the disk. hasRead() tells when the reading ends.
    bool isReading() const { return !m_unread.isEmpty(); }
    /// Hides the chooser until it can be destroyed. From now on it uses nothing of its owner but
    /// the icons.
    void retire();

    /// Shows another folder.
    void enter(const QString &folder);

    /// Enter, or a double click on a file.
    void accept() override { Q_EMIT chosen(); }
    /// Escape in the list.
    void reject() override { Q_EMIT cancelled(); }

Q_SIGNALS:
    void chosen();
    void cancelled();
    void chosenPathChanged();
    void hasRead();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addHiddenItemsKey();
    void followParts();
    void followWholeDialog();
    void followReading();
    void clearChoice();
    bool pressListKey(int key);
    bool typeIntoName(QKeyEvent &key);
    bool selectFirst();
    void toggleHidden();

    ChooserItems *m_items;
    QSet<QString> m_unread;             ///< folders that are being read
    QSet<QString> m_read;               ///< folders that were read once
    std::optional<DialogParts> m_parts; ///< none for a dialog that stays as it is
    bool m_isTyped = false;             ///< the name was typed, and nothing was selected after that
};
