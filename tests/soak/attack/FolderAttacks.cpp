#include "tests/soak/attack/Attack.h"
#include "tests/soak/attack/WatchedFile.h"

#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/mount.h>
#include <unistd.h>
#include <utility>

namespace {

bool rename(const QByteArray &from, const QByteArray &to)
{
    return std::rename(from.constData(), to.constData()) == 0;
}

int entriesOf(const QByteArray &folder)
{
    int count = 0;
    if (DIR *const opened = ::opendir(folder.constData())) {
        while (::readdir(opened))
            ++count;
        ::closedir(opened);
    }
    return count;
}

/// A folder, and a link in its place.
class LinkAttack : public Attack
{
public:
    using Attack::Attack;

    int finish() override { return ground().missingOutside(); }

protected:
    int swap(const QByteArray &folder, const QByteArray &target)
    {
        const QByteArray aside = ground().path("aside");
        if (!rename(folder, aside))
            return 0;
        if (::symlink(target.constData(), folder.constData()) == 0)
            ::unlink(folder.constData());
        rename(aside, folder);
        return 4;
    }
};

class FolderLinkAttack final : public LinkAttack
{
public:
    using LinkAttack::LinkAttack;

    const char *name() const override { return "link"; }
    const char *description() const override { return "a link takes a folder's place"; }
    int strike() override
    {
        const QByteArray folder =
            '/' + AttackGround::folderName(nextNumber() % AttackGround::kFolders);
        return swap(ground().location() + folder, ground().outside() + folder);
    }
};

class RootLinkAttack final : public LinkAttack
{
public:
    using LinkAttack::LinkAttack;

    const char *name() const override { return "root"; }
    const char *description() const override { return "a link takes the location's place"; }
    int strike() override { return swap(ground().location(), ground().outside()); }
};

/// While it is elsewhere, nothing of it may go.
class DragAttack final : public Attack
{
public:
    DragAttack(const AttackGround &ground, bool hasExclusion)
        : Attack(ground), m_hasExclusion(hasExclusion)
    {
    }

    const char *name() const override { return m_hasExclusion ? "drag" : "drag-without"; }
    const char *description() const override
    {
        return m_hasExclusion ? "a folder is dragged out"
                              : "a folder is dragged out, nothing is excluded";
    }
    bool hasExclusion() const override { return m_hasExclusion; }
    TrustingDeleter::Way victim() const override { return TrustingDeleter::Way::ByDescriptor; }
    int strike() override
    {
        const QByteArray folder = ground().location() + '/' +
                                  AttackGround::folderName(nextNumber() % AttackGround::kFolders);
        const QByteArray saved = ground().path("home/Documents/saved");
        if (!rename(folder, saved))
            return 0;
        const int before = entriesOf(saved);
        constexpr int kLooks = 8;
        int after = before;
        for (int look = 0; look < kLooks; ++look)
            after = entriesOf(saved);
        m_lost += before - after;
        rename(saved, folder);
        return 2;
    }
    int finish() override { return std::exchange(m_lost, 0); }

private:
    bool m_hasExclusion;
    int m_lost = 0;
};

/// A folder of outside comes in the place of one that is chosen.
class TwinAttack : public Attack
{
public:
    using Attack::Attack;

    const char *name() const override { return "twin"; }
    const char *description() const override { return "a folder is exchanged with another"; }
    int strike() override
    {
        return swapTwice('/' + AttackGround::folderName(nextNumber() % AttackGround::kFolders));
    }
    void prepare() override
    {
        Attack::prepare();
        for (int i = 0; i < AttackGround::kFiles; ++i)
            m_outside.emplace_back(ground().outside() + '/' + AttackGround::fileName(i));
    }
    /// A folder that was aside for a moment when it was to go back is elsewhere now, but not lost.
    int finish() override { return lostOf(std::exchange(m_outside, {})); }

protected:
    int swapTwice(const QByteArray &folder)
    {
        const QByteArray inside = ground().location() + folder;
        const QByteArray outside = ground().outside() + folder;
        const auto swap = [&] {
            return ::renameat2(AT_FDCWD, inside.constData(), AT_FDCWD, outside.constData(),
                               RENAME_EXCHANGE) == 0;
        };
        return swap() ? 1 + int(swap()) : 0;
    }

private:
    std::vector<WatchedFile> m_outside;
};

class RootTwinAttack final : public TwinAttack
{
public:
    using TwinAttack::TwinAttack;

    const char *name() const override { return "root-twin"; }
    const char *description() const override { return "the location is exchanged with another"; }
    int strike() override { return swapTwice({}); }
};

class MountAttack final : public Attack
{
public:
    using Attack::Attack;

    const char *name() const override { return "mount"; }
    const char *description() const override { return "another folder is mounted over one"; }
    bool needsAdministrator() const override { return true; }
    int strike() override
    {
        const QByteArray folder =
            '/' + AttackGround::folderName(nextNumber() % AttackGround::kFolders);
        const QByteArray inside = ground().location() + folder;
        if (::mount((ground().outside() + folder).constData(), inside.constData(), nullptr, MS_BIND,
                    nullptr) != 0)
            return 0;
        ::umount2(inside.constData(), MNT_DETACH);
        return 2;
    }
    int finish() override
    {
        // A folder may have been moved aside while it was mounted over.
        std::vector<std::filesystem::path> folders;
        for (const auto &entry :
             std::filesystem::recursive_directory_iterator(ground().location().toStdString())) {
            if (entry.is_directory() && !entry.is_symlink())
                folders.push_back(entry.path());
        }
        for (const auto &folder : folders)
            ::umount2(folder.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
        return ground().missingOutside();
    }
};

} // namespace

std::vector<std::unique_ptr<Attack>> folderAttacks(const AttackGround &ground)
{
    std::vector<std::unique_ptr<Attack>> attacks;
    attacks.push_back(std::make_unique<FolderLinkAttack>(ground));
    attacks.push_back(std::make_unique<RootLinkAttack>(ground));
    attacks.push_back(std::make_unique<DragAttack>(ground, true));
    attacks.push_back(std::make_unique<DragAttack>(ground, false));
    attacks.push_back(std::make_unique<TwinAttack>(ground));
    attacks.push_back(std::make_unique<RootTwinAttack>(ground));
    attacks.push_back(std::make_unique<MountAttack>(ground));
    return attacks;
}
