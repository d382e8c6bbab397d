#pragma once

#include "tests/slices/kit/AttackedHome.h"

/// One thing that somebody does to an AttackedHome while it is cleaned.
struct HostileMove
{
    QByteArray name;
    std::function<void(const QByteArray &ground)> act;
    /// It moves the location itself: what is removed of it meanwhile was chosen.
    bool isOfLocation = false;
};

/// Whether moves that need the right to mount are wanted.
enum class Mounting { Allowed, NotAllowed };

/// Makes the table of all moves.
class HostileMoves final
{
public:
    static std::vector<HostileMove> all(Mounting mounting)
    {
        HostileMoves table;
        for (const char *folder : {"", "/b", "/b/c", "/b/c/d", "/way"}) {
            table.addReplacements(folder);
            table.addVisits(folder);
            if (mounting == Mounting::Allowed)
                table.addMounts(folder);
        }
        for (const char *file : {"/a", "/b/e", "/b/c/f", "/b/c/d/g", "/way/i"}) {
            table.addSaves(file);
            table.addThefts(file);
        }
        table.addExclusions();
        return table.m_moves;
    }

private:
    using Act = std::function<void(const QByteArray &ground)>;

    void add(const QByteArray &what, const QByteArray &where, const Act &act)
    {
        const auto attempt = [act](const QByteArray &ground) {
            try {
                act(ground);
            } catch (const std::filesystem::filesystem_error &) {
                // The cleaning was faster: nothing is left of what was to be moved.
            }
        };
        m_moves.push_back({what + (where.isEmpty() ? " the location" : ' ' + where.sliced(1)),
                           attempt, where.isEmpty()});
    }

    /// The folder goes, and perhaps another thing takes its place.
    void addReplacements(const QByteArray &folder)
    {
        const QByteArray place = "/home/Downloads" + folder;
        add("link for", folder, [=](const QByteArray &ground) {
            move(ground + place, ground + "/aside");
            if (!exists(ground + place))
                makeLink(ground + place, ground + "/outside" + folder);
        });
        add("file for", folder, [=](const QByteArray &ground) {
            move(ground + place, ground + "/aside");
            if (!exists(ground + place))
                makeFile(ground + place, "new");
        });
        add("move out", folder, [=](const QByteArray &ground) {
            move(ground + place, ground + "/home/Documents/moved");
        });
        add("rename", folder,
            [=](const QByteArray &ground) { move(ground + place, ground + place + "-renamed"); });
        add("exchange with another", folder, [=](const QByteArray &ground) {
            exchange(ground + place, ground + "/outside" + folder);
        });
        if (!folder.isEmpty() && folder != "/way") {
            add("drag into the exclusion", folder, [=](const QByteArray &ground) {
                move(ground + place, ground + "/home/Downloads/way/Keep/dragged");
            });
            add("exchange with the exclusion", folder, [=](const QByteArray &ground) {
                exchange(ground + place, ground + "/home/Downloads/way/Keep");
            });
        }
    }

    /// Something comes into the folder.
    void addVisits(const QByteArray &folder)
    {
        const QByteArray place = "/home/Downloads" + folder;
        const auto comes = [&](const QByteArray &what, const QByteArray &from, const char *to) {
            add(what, folder, [=](const QByteArray &ground) {
                if (exists(ground + place))
                    move(ground + from, ground + place + to);
            });
        };
        comes("move the exclusion into", "/home/Downloads/way/Keep", "/Renamed");
        comes("move the excluded file into", "/home/Downloads/way/Keep/h", "/renamed");
        comes("move a letter into", "/home/letter", "/letter");
        comes("move letters into", "/home/letters", "/letters");
        add("new file in", folder, [=](const QByteArray &ground) {
            if (exists(ground + place))
                makeFile(ground + place + "/new", "new");
        });
    }

    void addMounts(const QByteArray &folder)
    {
        const QByteArray place = "/home/Downloads" + folder;
        add("mount another over", folder, [=](const QByteArray &ground) {
            ::mount((ground + "/outside" + folder).constData(), (ground + place).constData(),
                    nullptr, MS_BIND, nullptr);
        });
        add("mount memory over", folder, [=](const QByteArray &ground) {
            if (::mount("memory", (ground + place).constData(), "tmpfs", 0, nullptr) == 0)
                makeFile(ground + place + "/new", "new, in memory");
        });
    }

    /// A file gets another content, or the name another file.
    void addSaves(const QByteArray &file)
    {
        const QByteArray place = "/home/Downloads" + file;
        add("write", file, [=](const QByteArray &ground) {
            if (exists(ground + place))
                makeFile(ground + place, "written");
        });
        add("save", file, [=](const QByteArray &ground) {
            makeFile(ground + "/saving", "saved");
            move(ground + "/saving", ground + place);
        });
        add("save, and keep the old", file, [=](const QByteArray &ground) {
            makeFile(ground + "/saving", "saved");
            move(ground + place, ground + place + '~');
            move(ground + "/saving", ground + place);
        });
        add("rename", file,
            [=](const QByteArray &ground) { move(ground + place, ground + place + "-renamed"); });
        add("link for", file, [=](const QByteArray &ground) {
            move(ground + place, ground + "/aside");
            if (exists((ground + place).first((ground + place).lastIndexOf('/'))))
                makeLink(ground + place, ground + "/outside" + file);
        });
    }

    /// Something that must stay gets a name that was listed.
    void addThefts(const QByteArray &file)
    {
        const QByteArray place = "/home/Downloads" + file;
        const QByteArray excluded = "/home/Downloads/way/Keep/h";
        add("move the excluded file over", file,
            [=](const QByteArray &ground) { move(ground + excluded, ground + place); });
        add("exchange the excluded file with", file,
            [=](const QByteArray &ground) { exchange(ground + excluded, ground + place); });
        add("move a letter over", file,
            [=](const QByteArray &ground) { move(ground + "/home/letter", ground + place); });
        add("exchange a letter with", file,
            [=](const QByteArray &ground) { exchange(ground + "/home/letter", ground + place); });
        add("folder for", file, [=](const QByteArray &ground) {
            move(ground + place, ground + "/aside");
            if (exists((ground + place).first((ground + place).lastIndexOf('/'))))
                move(ground + "/home/letters", ground + place);
        });
    }

    /// The exclusion itself goes elsewhere.
    void addExclusions()
    {
        const QByteArray keep = "/home/Downloads/way/Keep";
        add("move out", "/way/Keep", [=](const QByteArray &ground) {
            move(ground + keep, ground + "/home/Documents/moved");
        });
        add("exchange with another", "/way/Keep",
            [=](const QByteArray &ground) { exchange(ground + keep, ground + "/outside/b"); });
        add("exchange with a file", "/way/Keep", [=](const QByteArray &ground) {
            exchange(ground + keep, ground + "/home/Downloads/a");
        });
    }

    std::vector<HostileMove> m_moves;
};
