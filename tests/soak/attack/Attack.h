#pragma once

#include "tests/soak/attack/AttackGround.h"
#include "tests/soak/attack/TrustingDeleter.h"

#include <memory>
#include <vector>

/// What somebody does over and over while it is cleaned. Lives in a process of its own, which is
/// the only one that makes and moves things.
class Attack
{
public:
    explicit Attack(const AttackGround &ground) : m_ground(ground) {}
    virtual ~Attack() = default;
    Attack(const Attack &) = delete;
    Attack &operator=(const Attack &) = delete;

    /// One word for the command line.
    virtual const char *name() const = 0;
    virtual const char *description() const = 0;
    virtual bool needsAdministrator() const { return false; }
    /// Whether something in the location is excluded.
    virtual bool hasExclusion() const { return false; }
    /// The simple way to delete that falls for it.
    virtual TrustingDeleter::Way victim() const { return TrustingDeleter::Way::ByPath; }

    /// Makes everything anew, before each cleaning.
    virtual void prepare() { m_ground.makeAnew(); }
    /// Makes some moves, and says how many.
    virtual int strike() = 0;
    /// After the cleaning: puts everything back. Returns how many files were lost.
    virtual int finish() = 0;

protected:
    const AttackGround &ground() const { return m_ground; }
    /// Goes round and round.
    int nextNumber() { return m_number++; }

private:
    AttackGround m_ground;
    int m_number = 0;
};

std::vector<std::unique_ptr<Attack>> folderAttacks(const AttackGround &ground);
std::vector<std::unique_ptr<Attack>> fileAttacks(const AttackGround &ground);
