#include "slices/home/KeptPlaces.h"

#include "slices/probe/HomeProbe.h"

#include <QtGlobal>
#include <array>

namespace {

constexpr auto kUploads = QT_TRANSLATE_NOOP("KeptPlaces", "files that wait to be uploaded");
constexpr auto kAppointments =
    QT_TRANSLATE_NOOP("KeptPlaces", "appointments and addresses that wait to be uploaded");
constexpr auto kOpened =
    QT_TRANSLATE_NOOP("KeptPlaces", "files opened from the network or from an archive");
constexpr auto kReceived = QT_TRANSLATE_NOOP("KeptPlaces", "files received over Bluetooth");
constexpr auto kUnsaved = QT_TRANSLATE_NOOP("KeptPlaces", "work that was not saved");
constexpr auto kHistory = QT_TRANSLATE_NOOP("KeptPlaces", "the history of files that were edited");
constexpr auto kDevelopments =
    QT_TRANSLATE_NOOP("KeptPlaces", "the way in which photographs were developed");
constexpr auto kEnvironments =
    QT_TRANSLATE_NOOP("KeptPlaces", "environments in which projects run");
constexpr auto kStored = QT_TRANSLATE_NOOP("KeptPlaces", "what scripts have stored");
constexpr auto kSessions = QT_TRANSLATE_NOOP("KeptPlaces", "saved sessions of the desktop");
constexpr auto kSettings = QT_TRANSLATE_NOOP("KeptPlaces", "settings and sign-ins");
constexpr auto kWords = QT_TRANSLATE_NOOP("KeptPlaces", "words that an input method has learned");

/// Each row names who writes there, and where that can be read.
constexpr std::array kPlaces{
    // rclone, manual of "rclone mount", VFS file caching: files are written there and uploaded
    // later, after a restart too. "vfsMeta" tells which parts of them are new.
    KeptPlace{"rclone/vfs", kUploads},
    KeptPlace{"rclone/vfsMeta", kUploads},
    // rclone, manual of "rclone bisync", --workdir: the listings of the last run. Without them it
    // cannot tell what was deleted on either side.
    KeptPlace{"rclone/bisync", kSettings},
    // onedriver, its README: files that were changed without a network are kept there.
    KeptPlace{"onedriver", kUploads},
    // evolution-data-server, documentation of ECalMetaBackend and EBookMetaBackend: what was
    // changed without a network is kept in the cache of the account until it can be sent.
    KeptPlace{"evolution/calendar", kAppointments},
    KeptPlace{"evolution/tasks", kAppointments},
    KeptPlace{"evolution/memos", kAppointments},
    KeptPlace{"evolution/addressbook", kAppointments},
    // KIO, kioexec/main.cpp: a file from elsewhere is opened as a copy in "krun". It is sent back
    // when the program that shows it has ended.
    KeptPlace{"kioexec", kOpened},
    // File Roller, get_temp_work_dir(): a file that is opened out of an archive lies there until
    // the changed file is put back into the archive. Engrampa does the same.
    KeptPlace{".fr-*", kOpened},
    // GVfs, gvfsdaemon: remote folders are shown there in a session without a runtime folder.
    KeptPlace{"gvfs", kOpened},
    // BlueZ, "obexd --help", --root: received files lie there until the desktop fetches them.
    KeptPlace{"obexd", kReceived},
    // Inkscape, preferences, "Autosave directory": this one unless another is set.
    KeptPlace{"inkscape", kUnsaved},
    // Xournal++, Util::getAutosaveFilepath(): notes that have no file yet.
    KeptPlace{"xournalpp/autosaves", kUnsaved},
    // MyPaint, lib/document.py, CACHE_DOC_AUTOSAVE_SUBDIR: paintings to be recovered.
    KeptPlace{"mypaint", kUnsaved},
    // FreeCAD, wiki, "Document recovery": the user cache folder holds what a crash left.
    KeptPlace{"FreeCAD", kUnsaved},
    // Trojita, Gui/ComposeWidget.cpp: mails that are being written.
    KeptPlace{"flaska.net/*/Drafts", kUnsaved},
    // Vim and Neovim, ":help undodir", ":help directory", ":help backupdir": many set-ups name
    // these folders. By default Vim keeps such files beside the edited ones, Neovim in its state.
    KeptPlace{"vim/undo", kHistory},
    KeptPlace{"vim/swap", kUnsaved},
    KeptPlace{"vim/backup", kHistory},
    KeptPlace{"nvim/undo", kHistory},
    KeptPlace{"nvim/swap", kUnsaved},
    KeptPlace{"nvim/backup", kHistory},
    // IntelliJ Platform, "Directories used by the IDE": the system folder holds the local history.
    KeptPlace{"JetBrains/*/LocalHistory", kHistory},
    KeptPlace{"Google/AndroidStudio*/LocalHistory", kHistory},
    // RawTherapee, preferences, "Processing profile saving location": the cache, if so chosen.
    KeptPlace{"RawTherapee*/profiles", kDevelopments},
    // Poetry, documentation of the setting "virtualenvs.path".
    KeptPlace{"pypoetry/virtualenvs", kEnvironments},
    // renv, documentation "Package installation", the cache: projects hold links to its packages.
    KeptPlace{"R/renv", kEnvironments},
    // Deno, manual, "Web Storage API" and DENO_DIR: what scripts put into localStorage.
    KeptPlace{"deno/location_data", kStored},
    // Xfce, xfce4-session and xfwm4: the saved session. Openbox, openbox/session.c: the same.
    KeptPlace{"sessions", kSessions},
    KeptPlace{"openbox/sessions", kSessions},
    // KeePassXC, src/core/Config.cpp: the settings that belong to this machine.
    KeptPlace{"keepassxc", kSettings},
    // huggingface_hub, environment variables HF_TOKEN_PATH and HF_HOME; accelerate, "accelerate
    // config": the file that it writes.
    KeptPlace{"huggingface/token", kSettings},
    KeptPlace{"huggingface/stored_tokens", kSettings},
    KeptPlace{"huggingface/accelerate", kSettings},
    // ibus-libpinyin, src/PYLibPinyin.cc, and the older engines: the user's own dictionary.
    KeptPlace{"ibus/libpinyin", kWords},
    KeptPlace{"ibus/libzhuyin", kWords},
    KeptPlace{"ibus/pinyin", kWords},
    KeptPlace{"ibus/sunpinyin", kWords},
};

} // namespace

std::span<const KeptPlace> keptPlaces()
{
    return kPlaces;
}

QList<FoundKeptPlace> findKeptPlaces(const HomeProbe &reader, const FileUrl &home,
                                     const FileUrls &caches)
{
    QList<FoundKeptPlace> found;
    for (const FileUrl &cache : caches) {
        const QByteArray inside = cache.path().sliced(home.path().size() + 1) + '/';
        for (const KeptPlace &place : kPlaces) {
            for (const QByteArray &path : reader.entriesMatching(inside + place.path)) {
                // A file also keeps what its name begins: right, where nothing is known of it.
                const FileUrlKind kind =
                    reader.hasFolder(path) ? FileUrlKind::Folder : FileUrlKind::File;
                found.append({home.appending(path, kind), place.what});
            }
        }
    }
    return found;
}
