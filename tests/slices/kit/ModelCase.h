#pragma once

#include "tests/slices/kit/BusyUser.h"
#include "tests/slices/kit/FaultyCalls.h"
#include "tests/support/disk/Moments.h"

/// One random cleaning, compared with set arithmetic: a tree, exclusions, and what is chosen of it,
/// all from one number. Some cases are confined, in some the user goes on working after the
/// confirmation, in some calls fail. Works in a folder that it makes and clears away.
class ModelCase final
{
public:
    struct Conditions
    {
        int failuresPerThousand = 0;
        bool isForOneThread = true;
        /// One of so many is confined, and in one of so many the user goes on working: those take
        /// most of the time, for their threads and for the clock's next tick.
        quint32 confined = 10;
        quint32 busy = 10;
    };
    struct Outcome
    {
        std::uint64_t removed = 0;
        std::uint64_t kept = 0;
        std::uint64_t failedCalls = 0;
        QByteArrayList lost;       ///< gone, although it was to stay
        QByteArrayList leftBehind; ///< there, although it was to go, or the report explains it not
        QByteArrayList wrong;      ///< anything else that is not as it should be

        bool isRight() const { return lost.isEmpty() && leftBehind.isEmpty() && wrong.isEmpty(); }
        QByteArray words() const
        {
            return "lost (" + printable(lost) + "), left (" + printable(leftBehind) + ") " +
                   wrong.join(", ");
        }

    private:
        static QByteArray printable(const QByteArrayList &paths)
        {
            return paths.join(", ").toPercentEncoding("/, ");
        }
    };

    /// `around` is a folder that exists.
    ModelCase(const QByteArray &around, quint32 seed, const Conditions &conditions)
        : m_ground(around + '/' + QByteArray::number(seed)),
          m_folder(m_ground + "/home/Downloads"),
          m_seed(seed),
          m_conditions(conditions),
          m_random(seed)
    {
    }
    ~ModelCase()
    {
        std::error_code ignored;
        std::filesystem::remove_all(native(m_ground), ignored);
    }
    ModelCase(const ModelCase &) = delete;
    ModelCase &operator=(const ModelCase &) = delete;

    bool isConfined() const { return m_seed % m_conditions.confined == 0; }
    bool isBusy() const { return m_seed / 3 % m_conditions.busy == 0; }

    Outcome run()
    {
        makeFile(m_ground + "/home/Documents/letter");
        makeFolder(m_folder);
        const GrantedFolder home(m_ground + "/home");
        TreeModel model(m_folder, m_ground + "/outside", m_random);
        const Moment confirmed = confirm(model);
        const FileUrls excluded = someExclusions(model, home);
        m_isOfFiles = m_random.bounded(3) == 0;
        const std::vector<TreeModel::Node> listed = someNodes(model);
        const std::set<QByteArray> before = tree(m_folder);

        SliceToClean slice =
            m_isOfFiles ? theFiles(urlsOf(listed)) : contentsOf({home.folder("Downloads")});
        slice.confirmed = confirmed;
        FaultyCalls calls(m_seed, m_conditions.failuresPerThousand, m_conditions.isForOneThread);
        if (!isConfined())
            calls.letNothingBeConfined();
        const CleaningReport report = clean(home, {slice}, excluding(excluded), calls);

        Outcome outcome;
        outcome.failedCalls = calls.failed();
        compare({model, listed, excluded}, before, report, outcome);
        return outcome;
    }

private:
    struct Asked
    {
        const TreeModel &model;
        const std::vector<TreeModel::Node> &listed;
        const FileUrls &excluded;
    };

    Moment confirm(TreeModel &model)
    {
        if (!isBusy())
            return Moment::never();
        BusyUser user(model, m_ground + "/outside", m_random);
        const Moment confirmed = momentBetween();
        user.work();
        return confirmed;
    }

    FileUrls someExclusions(const TreeModel &model, const GrantedFolder &home)
    {
        FileUrls excluded;
        for (int count = m_random.bounded(4); count > 0; --count) {
            const auto &node = model.nodes()[m_random.bounded(quint32(model.nodes().size()))];
            // Sometimes in the other form: an item may have changed between file and folder since
            // it was excluded.
            const bool isFolder = node.isFolder != (m_random.bounded(8) == 0);
            excluded.append(
                FileUrl::fromPath(node.path, isFolder ? FileUrlKind::Folder : FileUrlKind::File));
        }
        const FileUrls others{home.folder("Documents"), home.file("Down"),
                              home.folder("Downloads/"), home.folder("DownloadsOld/a"),
                              home.file("Downloads")};
        if (m_random.bounded(8) == 0)
            excluded.append(others[m_random.bounded(int(others.size()))]);
        return excluded;
    }

    /// Nobody picks a file and the folder around it; the removal of one would be a later change of
    /// the other.
    std::vector<TreeModel::Node> someNodes(const TreeModel &model)
    {
        std::vector<TreeModel::Node> nodes;
        for (int count = m_random.bounded(1, 5); count > 0; --count) {
            const auto &node = model.nodes()[m_random.bounded(quint32(model.nodes().size()))];
            const auto meets = [&](const TreeModel::Node &other) {
                return (other.path + '/').startsWith(node.path + '/') ||
                       (node.path + '/').startsWith(other.path + '/');
            };
            if (!isBusy() || std::none_of(nodes.begin(), nodes.end(), meets))
                nodes.push_back(node);
        }
        return nodes;
    }

    static FileUrls urlsOf(const std::vector<TreeModel::Node> &nodes)
    {
        FileUrls urls;
        for (const auto &node : nodes)
            urls.append(FileUrl::fromPath(node.path,
                                          node.isFolder ? FileUrlKind::Folder : FileUrlKind::File));
        return urls;
    }

    std::set<QByteArray> leftOf(const Asked &asked, const TreeModel &model,
                                TreeModel::OtherNames names) const
    {
        return m_isOfFiles ? model.leftOfFiles(asked.listed, asked.excluded, names)
                           : model.leftOfContents(asked.excluded, names);
    }

    void compare(const Asked &asked, const std::set<QByteArray> &before,
                 const CleaningReport &report, Outcome &outcome) const
    {
        const bool mayFail = m_conditions.failuresPerThousand > 0;
        const std::set<QByteArray> after = tree(m_folder);
        const std::set<QByteArray> expected =
            leftOf(asked, asked.model, TreeModel::OtherNames::Known);
        const std::set<QByteArray> atLeast =
            mayFail ? leftOf(asked, asked.model, TreeModel::OtherNames::PerhapsNot) : expected;
        const std::set<QByteArray> unexplained =
            isBusy() ? leftOf(asked, asked.model.asIfUnchanged(), TreeModel::OtherNames::Known)
                     : expected;
        for (const QByteArray &path : atLeast) {
            if (!after.contains(path))
                outcome.lost.append(path);
        }
        for (const QByteArray &path : after) {
            const bool isMeant =
                unexplained.contains(path) ||
                ((mayFail || expected.contains(path)) && isExplained(path, report));
            if (!isMeant)
                outcome.leftBehind.append(path);
        }
        outcome.removed = report.removedItems;
        outcome.kept = after.size();
        if (before.size() - after.size() != report.removedItems)
            outcome.wrong.append("another number of removed items is reported");
        if (!mayFail && (!report.failures.isEmpty() || (!isBusy() && !report.refusals.isEmpty())))
            outcome.wrong.append("failures without a cause are reported");
        if (!exists(m_ground + "/outside/precious") || !exists(m_ground + "/home/Documents/letter"))
            outcome.lost.append("outside");
    }

    bool isExplained(const QByteArray &relativePath, const CleaningReport &report) const
    {
        const QByteArray path = m_folder + '/' + relativePath;
        const auto isAt = [&](const QByteArray &reported) {
            return path == reported || path.startsWith(reported + '/') ||
                   reported.startsWith(path + '/');
        };
        return std::any_of(report.failures.begin(), report.failures.end(),
                           [&](const CleaningFailure &failure) { return isAt(failure.path); }) ||
               std::any_of(report.refusals.begin(), report.refusals.end(),
                           [&](const CleaningRefusal &refusal) { return isAt(refusal.path); });
    }

    const QByteArray m_ground;
    const QByteArray m_folder;
    const quint32 m_seed;
    const Conditions m_conditions;
    QRandomGenerator m_random;
    bool m_isOfFiles = false;
};
