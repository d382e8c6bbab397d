#pragma once

#include <QString>
#include <optional>

class QAbstractItemView;
class QFileDialog;
class QGridLayout;
class QHBoxLayout;
class QLineEdit;
class QListView;
class QSplitter;
class QToolButton;
class QTreeView;

/// The names that the toolkit gives to the parts of its file dialog. The toolkit does not promise
/// them: another release may use other names. A value.
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

/// The parts of the toolkit's own file dialog, with none missing; owned by the dialog. Main thread
/// only.
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
    QHBoxLayout *bar = nullptr;  ///< above the list: the path, and back, forward and up

    /// Returns nothing, and logs it, when any part is missing: then the dialog must stay as it is.
    static std::optional<DialogParts> find(const QFileDialog &dialog, const DialogPartNames &names);

    /// Makes the dialog look like a part of a panel: without menus, without the controls that a
    /// panel does not need, and with the buttons back, forward and up at the left of the path.
    void arrange(QFileDialog &dialog) const;

private:
    static void preventMenus(QAbstractItemView &view);
    void arrangeBar() const;
    void arrangePlaces(int width) const;
    void arrangeList() const;
    void arrangeButtons() const;
};
