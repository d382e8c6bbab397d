#pragma once

#include "platform/files/FileAccess.h"
#include "slices/page/GrantQuestion.h"

#include <QObject>
#include <memory>
#include <optional>

class HomeWatch;
class InterfaceLoader;
class LargeFilesWindowController;
class QWidget;
class SliceSelection;
class SystemCalls;
class UserDefaults;
class Workspace;

/// The slice whose files the user picks: shows the sheet for it, holds the access while the sheet
/// is up, and gives the slice's record what was picked, and the settings the selection. Owned by
/// the page; main thread only.
class LargeFilesPicking final : public QObject
{
    Q_OBJECT

public:
    /// What it works with; all must outlive it.
    struct Services
    {
        const InterfaceLoader &loader;
        UserDefaults &defaults;
        const SystemCalls &calls;
        FileAccess &access;
        Workspace &workspace;
        HomeWatch &home;
        SliceSelection &selection;
        GrantQuestion whenGrantIsUsable;
        /// Whether the sheet may come up: not while another question is up or a cleaning runs.
        std::function<bool()> mayPick;
        /// Whether the record may change. During a cleaning, what the user has confirmed stays as
        /// it is.
        std::function<bool()> mayChange;
    };

    /// The sheet comes up over the window that holds `host`.
    LargeFilesPicking(QWidget &host, Services services, QObject *parent = nullptr);
    ~LargeFilesPicking() override;

    /// The sheet; made on first use and kept.
    LargeFilesWindowController &windowController();
    bool isPicking() const { return m_access.has_value(); }

    /// Shows the sheet, unless it is up already or picking is not allowed now.
    void pick();
    /// Drops what was picked, because the search's result is out of date. When the sheet is up, the
    /// search begins again and the user sees it.
    void drop();

Q_SIGNALS:
    /// The sheet has gone, and the record has what was picked in it.
    void picked();
    /// The size of what is picked was read anew.
    void sizeChanged();

private:
    bool mayPick() const;
    void showSheet();
    void takePickedFiles();
    void followSize();

    QWidget &m_host;
    Services m_services;
    std::unique_ptr<LargeFilesWindowController> m_windowController;
    std::optional<AccessScope> m_access; ///< held while the sheet is up
};
