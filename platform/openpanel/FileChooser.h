#pragma once

#include "platform/openpanel/DialogParts.h"
#include "platform/openpanel/OpenPanelOptions.h"

#include <QFileDialog>
#include <QSet>

class ChooserItems;
class FileIcons;

/// The toolkit's own file dialog as part of a panel: without buttons of its own, menus, or any
/// command that changes a file. It only says what is chosen; whether that may be is the panel's to
/// judge. Main thread only.
///
/// To be that it takes the dialog apart. Where the toolkit makes its dialog in another way, so that
/// a part cannot be found, the dialog is left as it is and chosen from just the same.
///
/// Keys in the list: Enter chooses, Right goes into a folder, Left and Backspace go to its parent,
/// Ctrl+H shows hidden items.
class FileChooser final : public QFileDialog
{
    Q_OBJECT

public:
    /// Starts in that folder, which is there. The icons are read by a thread of the dialog's: they
    /// must outlive it.
    FileChooser(const OpenPanel &panel, const QString &start, FileIcons &icons,
                const DialogPartNames &partNames, QWidget *parent);

    /// The absolute path that is chosen right now: what was typed, else the selected item, else the
    /// folder itself.
    QString chosenPath() const;

    /// Beside the list, instead of those before: folders that are there, because their disks are
    /// asked again on the main thread. The computer stands below them, and alone at first.
    void offerPlaces(const QList<QUrl> &places);
    void focusList();

    /// Whether a folder is being read, by a thread of the dialog's for which its destructor waits:
    /// then for as long as the disk does. The end is told by hasRead().
    bool isReading() const { return !m_unread.isEmpty(); }
    /// Out of sight, and without anything of its owner's but the icons, until it can be destroyed.
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
    QSet<QString> m_read;               ///< are read once
    std::optional<DialogParts> m_parts; ///< nothing of a dialog that is left as it is
    bool m_isTyped = false;             ///< the name was typed, and nothing else selected since
};
