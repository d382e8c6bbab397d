#pragma once

#include <QString>
#include <optional>

class QFileDialog;
class QGridLayout;
class QHBoxLayout;
class QLineEdit;
class QListView;
class QSplitter;
class QToolButton;
class QTreeView;

/// What the toolkit calls the parts of its file dialog. No promise of the toolkit's: another
/// release may call them otherwise. A value.
struct DialogPartNames
{
    QString list = QStringLiteral("treeView");
    QString places = QStringLiteral("sidebar");
    QString name = QStringLiteral("fileNameEdit");
    QString back = QStringLiteral("backButton");
    QString forward = QStringLiteral("forwardButton");
    QString toParent = QStringLiteral("toParentButton");
    QString splitter = QStringLiteral("splitter");
};

/// The parts of the toolkit's own file dialog, each of which is there; owned by the dialog. Main
/// thread only.
struct DialogParts
{
    QTreeView *list = nullptr;
    QListView *places = nullptr;
    QLineEdit *name = nullptr;
    QToolButton *back = nullptr;
    QToolButton *forward = nullptr;
    QToolButton *toParent = nullptr;
    QSplitter *splitter = nullptr;
    QGridLayout *grid = nullptr; ///< all of the dialog
    QHBoxLayout *bar = nullptr;  ///< above the list: the path, and the way back, forth and up

    /// Nothing when any of them is missing, which is logged: then the dialog is to be left as it
    /// is.
    static std::optional<DialogParts> find(const QFileDialog &dialog, const DialogPartNames &names);

    /// Gives the dialog the look of a part of a panel: without menus, without what a panel has no
    /// use for, and with the way back, forth and up at the left of the path.
    void arrange(QFileDialog &dialog) const;

private:
    void arrangeBar() const;
    void arrangePlaces(int width) const;
    void arrangeList() const;
    void arrangeButtons() const;
};
