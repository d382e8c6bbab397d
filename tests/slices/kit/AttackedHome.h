#pragma once

#include "tests/slices/kit/Interlopers.h"

#include <algorithm>
#include <iterator>
#include <sys/mount.h>

/// A small home that is cleaned while somebody makes hostile moves in it. What must not be lost is
/// known by its text, wherever it is by then: what is excluded, what lies outside of the location,
/// and what has come after the confirmation.
class AttackedHome final
{
public:
    enum class Confinement { Off, On };
    enum class Exclusion { None, Keep };

    /// In a new folder, which is cleared away at the end.
    AttackedHome(const QByteArray &ground, Exclusion exclusion)
        : m_ground(ground), m_exclusion(exclusion)
    {
        // The same names outside as inside, so that a step too far would find something to remove.
        for (const char *name : {"a", "b/e", "b/c/f", "b/c/d/g", "way/i"}) {
            makeFile(m_ground + "/home/Downloads/" + name, QByteArray("chosen ") + name);
            makeProtected(QByteArray("/outside/") + name);
        }
        if (m_exclusion == Exclusion::Keep)
            makeProtected("/home/Downloads/way/Keep/h");
        else
            makeFile(m_ground + "/home/Downloads/way/Keep/h", "chosen way/Keep/h");
        makeProtected("/home/letter");
        makeProtected("/home/letters/letter");
        makeFolder(m_ground + "/home/Documents");
        m_home = std::make_unique<GrantedFolder>(m_ground + "/home");
        m_known = lookAtLocations(hostSystemCalls(), *m_home, {m_home->folder("Downloads")});
    }
    ~AttackedHome()
    {
        while (unmount())
            ;
        std::error_code ignored;
        std::filesystem::remove_all(native(m_ground), ignored);
    }
    AttackedHome(const AttackedHome &) = delete;
    AttackedHome &operator=(const AttackedHome &) = delete;

    QByteArray ground() const { return m_ground; }

    CleaningReport clean(const Moment &confirmed, const SystemCalls &calls) const
    {
        SliceToClean slice = contentsOf({m_home->folder("Downloads")});
        slice.confirmed = confirmed;
        slice.known = m_known;
        const FileUrls excluded = m_exclusion == Exclusion::Keep
                                      ? FileUrls{m_home->folder("Downloads/way/Keep")}
                                      : FileUrls();
        return ::clean(*m_home, {slice}, excluding(excluded), calls);
    }

    /// Lets somebody make a move. What is new by then, or was changed since the confirmation, must
    /// stay from then on; and, if threads are confined, what has left the location, until it is
    /// back.
    void suffer(const std::function<void()> &move, const Moment &confirmed, Confinement confinement)
    {
        std::set<QByteArray> before;
        if (m_hasMoved)
            before = checkedTexts();
        move();
        std::set<QByteArray> after;
        m_left.clear();
        for (const Found &found : allFiles()) {
            after.insert(found.text);
            const bool isOutside = !found.path.startsWith(m_ground + "/home/Downloads/");
            const bool isOurs = isPrivateName(
                found.path.sliced(found.path.lastIndexOf('/') + 1)); // moved by the cleaning
            const bool isLater = found.changed >= confirmed.stamp && !isOurs;
            if (!found.text.startsWith("chosen") || isLater)
                m_protected.insert(found.text);
            else if (isOutside && confinement == Confinement::On)
                m_left.insert(found.text);
        }
        // What the move itself has overwritten is nobody else's fault.
        std::erase_if(m_protected, [&](const QByteArray &text) {
            return before.contains(text) && !after.contains(text);
        });
        m_hasMoved = true;
    }

    /// What must not be lost and is lost. To be asked once, at the end.
    QByteArrayList lost()
    {
        std::set<QByteArray> there;
        do { // once more for what was hidden below a mount
            there.merge(texts());
        } while (unmount());
        noteLost(there);
        return {m_lost.begin(), m_lost.end()};
    }
    /// How much of what was chosen is still there.
    std::size_t chosenLeft() const
    {
        std::size_t count = 0;
        for (const Found &found : allFiles())
            count += found.text.startsWith("chosen") ? 1 : 0;
        return count;
    }

private:
    struct Found
    {
        QByteArray path;
        QByteArray text;
        std::int64_t changed = 0;
    };

    /// The cleaning may be going on: what is gone before it is read is passed over.
    std::vector<Found> allFiles() const
    {
        std::vector<Found> files;
        std::error_code error;
        QByteArrayList folders{m_ground};
        while (!folders.isEmpty()) {
            const QByteArray folder = folders.takeLast();
            for (std::filesystem::directory_iterator entry(native(folder), error);
                 !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
                const QByteArray path = QByteArray::fromStdString(entry->path().native());
                struct stat status
                {
                };
                if (::lstat(path.constData(), &status) != 0)
                    continue;
                if (S_ISDIR(status.st_mode))
                    folders.append(path);
                else if (S_ISREG(status.st_mode))
                    noteFile(path, status, files);
            }
        }
        return files;
    }
    /// A file that another thread moves aside at this moment has the time of its move already and
    /// its old name still. It would look like a file that has come later.
    static void noteFile(const QByteArray &path, const struct stat &status,
                         std::vector<Found> &files)
    {
        const QByteArray text = textOf(path);
        struct stat now
        {
        };
        if (::lstat(path.constData(), &now) == 0 && now.st_ino == status.st_ino)
            files.push_back(
                {path, text, status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec});
    }
    std::set<QByteArray> texts() const
    {
        std::set<QByteArray> all;
        for (const Found &found : allFiles())
            all.insert(found.text);
        return all;
    }
    std::set<QByteArray> checkedTexts()
    {
        const std::set<QByteArray> all = texts();
        noteLost(all);
        return all;
    }
    void noteLost(const std::set<QByteArray> &there)
    {
        for (const auto *wanted : {&m_protected, &m_left}) {
            std::copy_if(wanted->begin(), wanted->end(), std::inserter(m_lost, m_lost.end()),
                         [&](const QByteArray &text) { return !there.contains(text); });
        }
    }
    static QByteArray textOf(const QByteArray &path)
    {
        std::ifstream file(native(path), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        return text.empty() ? QByteArray("chosen, gone") : QByteArray::fromStdString(text);
    }
    void makeProtected(const QByteArray &place)
    {
        const QByteArray text = "protected " + place;
        makeFile(m_ground + place, text);
        m_protected.insert(text);
    }
    /// Whatever a move has mounted. Whether there was something.
    bool unmount() const
    {
        bool wasThere = false;
        for (const char *folder : {"", "/b", "/b/c", "/b/c/d", "/way"})
            wasThere =
                ::umount2((m_ground + "/home/Downloads" + folder).constData(), MNT_DETACH) == 0 ||
                wasThere;
        return wasThere;
    }

    QByteArray m_ground;
    Exclusion m_exclusion;
    std::unique_ptr<GrantedFolder> m_home;
    LocationIdentities m_known;
    bool m_hasMoved = false;
    std::set<QByteArray> m_protected;
    std::set<QByteArray> m_left; ///< outside now, although it was chosen
    std::set<QByteArray> m_lost;
};
