#pragma once

#include "tests/slices/kit/TreeModel.h"

#include <sys/stat.h>

/// Goes on working in a tree after the confirmation: writes, saves, renames and moves at random,
/// and keeps the model as the tree is by then. Made before the confirmation.
class BusyUser final
{
public:
    BusyUser(TreeModel &model, const QByteArray &outside, QRandomGenerator &random)
        : m_model(model), m_outside(outside), m_random(random)
    {
        makeFile(m_outside + "/arriving/letter");
        makeFile(m_outside + "/saved", "saved");
    }

    void work()
    {
        for (int count = m_random.bounded(1, 4); count > 0; --count) {
            const std::size_t index = m_random.bounded(quint32(m_model.nodes().size()));
            if (m_model.nodes()[index].isFolder)
                changeFolder(index, m_random.bounded(5));
            else
                changeFile(index, m_random.bounded(3));
            m_model.identify();
        }
    }

private:
    void changeFolder(std::size_t index, int what)
    {
        const QByteArray path = m_model.nodes()[index].path;
        if (what == 0) {
            add(path + "/new" + nextNumber(), false);
            makeFile(m_model.nodes().back().path, "new");
        } else if (what == 1) {
            add(aroundOf(path) + "/new" + nextNumber(), false);
            makeFile(m_model.nodes().back().path, "new");
        } else if (what == 2) {
            ::chmod(path.constData(), 0700);
            m_model.nodes()[index].isLater = true;
        } else if (what == 3) {
            rename(index);
        } else if (exists(m_outside + "/arriving")) {
            add(path + "/arrived", true);
            std::filesystem::rename(native(m_outside + "/arriving"), native(path + "/arrived"));
            m_model.nodes().push_back({path + "/arrived/letter", false, 0});
        }
    }

    void changeFile(std::size_t index, int what)
    {
        TreeModel::Node &node = m_model.nodes()[index];
        if (what == 0) {
            if (!std::filesystem::is_regular_file(
                    std::filesystem::symlink_status(native(node.path))))
                return;
            std::ofstream(native(node.path), std::ios::app) << "more";
            noteChangeOf(node.inode);
        } else if (what == 1) {
            noteChangeOf(node.inode);
            rename(index);
        } else if (exists(m_outside + "/saved")) {
            noteChangeOf(node.inode); // of its other names: one is gone
            std::filesystem::rename(native(m_outside + "/saved"), native(node.path));
            m_model.noteChangeIn(aroundOf(node.path));
        }
    }

    void rename(std::size_t index)
    {
        const QByteArray old = m_model.nodes()[index].path;
        const QByteArray path = aroundOf(old) + "/renamed" + nextNumber();
        std::filesystem::rename(native(old), native(path));
        m_model.nodes()[index].isLater = true;
        for (TreeModel::Node &node : m_model.nodes()) {
            if (node.path == old || node.path.startsWith(old + '/'))
                node.path = path + node.path.sliced(old.size());
        }
        m_model.noteChangeIn(aroundOf(path));
    }

    void add(const QByteArray &path, bool isFolder)
    {
        m_model.nodes().push_back({path, isFolder, 0, true});
        m_model.noteChangeIn(aroundOf(path));
    }
    void noteChangeOf(ino_t file)
    {
        for (TreeModel::Node &node : m_model.nodes())
            node.isLater = node.isLater || node.inode == file;
    }
    static QByteArray aroundOf(const QByteArray &path) { return path.first(path.lastIndexOf('/')); }
    QByteArray nextNumber() { return QByteArray::number(++m_number); }

    TreeModel &m_model;
    QByteArray m_outside;
    QRandomGenerator &m_random;
    int m_number = 0;
};
