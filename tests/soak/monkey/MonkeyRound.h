#pragma once

#include "tests/journeys/JourneyFixture.h"
#include "tests/soak/monkey/ConsentWatch.h"
#include "tests/soak/monkey/FencedSystem.h"
#include "tests/soak/monkey/WatchedHome.h"
#include "tests/soak/monkey/WindowMonkey.h"

/// What rounds have shown so far.
struct MonkeyTally
{
    int rounds = 0;
    int events = 0;
    int cleanings = 0;
    int removed = 0;      ///< files and folders
    int earlyPresses = 0; ///< on a button that destroys; they led to nothing
    int restarts = 0;     ///< after the window was closed
    QStringList findings;
};

/// One home and the program in it, under the hands of a monkey. From time to time somebody who
/// knows the program helps: goes to another page, chooses, presses the button that cleans, reads
/// the question and agrees, or does not. In the end only what was agreed to may be gone. Main
/// thread only.
class MonkeyRound final
{
public:
    explicit MonkeyRound(quint32 seed);

    /// Plays until so many events were sent, and adds what happened.
    void play(int events, MonkeyTally &tally);

private:
    bool start(MonkeyTally &tally);
    void help();
    void pressStart();
    void answer();
    void turnPage();
    void openSomething();
    void cleaningBegins(MonkeyTally &tally);
    void click(QWidget &button);
    void tap(SliceKind kind);
    QString scene() const;
    bool isOpen() const;
    bool isWell(const MonkeyTally &tally) const;

    WindowMonkey m_monkey;
    FencedSystem m_system;
    JourneyFixture m_fixture;
    WatchedHome m_home;
    std::unique_ptr<ConsentWatch> m_watch;
    bool m_hasExclusions = false;
};
