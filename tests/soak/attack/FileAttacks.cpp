#include "tests/soak/attack/Attack.h"
#include "tests/soak/attack/WatchedFile.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <utility>

namespace {

/// A file that must stay and one that is chosen exchange their names.
class ExchangeAttack : public Attack
{
public:
    ExchangeAttack(const AttackGround &ground, const QByteArray &precious)
        : Attack(ground), m_precious(precious)
    {
    }

    bool hasExclusion() const override { return true; }
    void prepare() override
    {
        Attack::prepare();
        m_watched.emplace(m_precious);
    }
    int strike() override
    {
        const QByteArray file = ground().location() + '/' + AttackGround::fileName(nextNumber());
        if (!swap(file))
            return 0;
        // The cleaning moves files aside for a moment.
        constexpr int kMostTries = 10'000;
        for (int tries = 0; tries < kMostTries && !m_watched->isLost(); ++tries) {
            if (swap(file))
                return 2;
        }
        m_watched->bringBack(m_precious);
        return 2;
    }
    int finish() override
    {
        const int lost = m_watched->isLost() ? 1 : 0;
        m_watched.reset();
        return lost;
    }

private:
    bool swap(const QByteArray &file) const
    {
        return ::renameat2(AT_FDCWD, m_precious.constData(), AT_FDCWD, file.constData(),
                           RENAME_EXCHANGE) == 0;
    }

    QByteArray m_precious;
    std::optional<WatchedFile> m_watched;
};

class ExcludedAttack final : public ExchangeAttack
{
public:
    explicit ExcludedAttack(const AttackGround &ground)
        : ExchangeAttack(ground, ground.excluded() + "/precious")
    {
    }
    const char *name() const override { return "excluded"; }
    const char *description() const override { return "an excluded file is exchanged with others"; }
};

class LetterAttack final : public ExchangeAttack
{
public:
    explicit LetterAttack(const AttackGround &ground)
        : ExchangeAttack(ground, ground.path("home/Documents/letter"))
    {
    }
    const char *name() const override { return "letter"; }
    const char *description() const override { return "a letter is exchanged with listed files"; }
};

/// Files of new content take the names of those that are listed.
class SaveAttack : public Attack
{
public:
    SaveAttack(const AttackGround &ground, bool hasExclusion)
        : Attack(ground), m_hasExclusion(hasExclusion)
    {
    }

    const char *name() const override { return m_hasExclusion ? "save" : "save-without"; }
    const char *description() const override
    {
        return m_hasExclusion ? "files are saved over"
                              : "files are saved over, nothing is excluded";
    }
    bool hasExclusion() const override { return m_hasExclusion; }
    int strike() override
    {
        if (m_tried == AttackGround::kFiles)
            return 0; // none is saved over twice in a cleaning
        ++m_tried;
        const QByteArray saving = ground().path("home/Documents/saving");
        WatchedFile saved(saving);
        const QByteArray file = ground().location() + '/' + AttackGround::fileName(nextNumber());
        if (std::rename(saving.constData(), file.constData()) == 0)
            m_saved.push_back(std::move(saved));
        return 1;
    }
    int finish() override
    {
        m_tried = 0;
        return lostOf(std::exchange(m_saved, {}));
    }

private:
    bool m_hasExclusion;
    int m_tried = 0;
    std::vector<WatchedFile> m_saved;
};

/// A folder comes in with what it holds, and goes again.
class ArrivalAttack final : public Attack
{
public:
    using Attack::Attack;

    const char *name() const override { return "arrival"; }
    const char *description() const override { return "a folder is dragged in"; }
    void prepare() override
    {
        Attack::prepare();
        std::filesystem::create_directory(letters().toStdString());
        m_letter.emplace(letters() + "/letter");
    }
    int strike() override
    {
        const QByteArray place = ground().location() + '/' +
                                 AttackGround::folderName(nextNumber() % AttackGround::kFolders) +
                                 "/letters";
        if (std::rename(letters().constData(), place.constData()) != 0)
            return 0;
        std::rename(place.constData(), letters().constData());
        return 2;
    }
    int finish() override
    {
        const int lost = m_letter->isLost() ? 1 : 0;
        m_letter.reset();
        return lost;
    }

private:
    QByteArray letters() const { return ground().path("home/Documents/letters"); }

    std::optional<WatchedFile> m_letter;
};

} // namespace

std::vector<std::unique_ptr<Attack>> fileAttacks(const AttackGround &ground)
{
    std::vector<std::unique_ptr<Attack>> attacks;
    attacks.push_back(std::make_unique<ExcludedAttack>(ground));
    attacks.push_back(std::make_unique<LetterAttack>(ground));
    attacks.push_back(std::make_unique<SaveAttack>(ground, true));
    attacks.push_back(std::make_unique<SaveAttack>(ground, false));
    attacks.push_back(std::make_unique<ArrivalAttack>(ground));
    return attacks;
}
