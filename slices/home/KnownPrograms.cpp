#include "slices/home/KnownPrograms.h"

#include "slices/record/Enumeration.h"

#include <algorithm>

namespace {

using enum ProgramFamily;
using enum ProfileFiles;

constexpr auto kNoProfiles = FlatpakEdition::Profiles::Unknown;

constexpr std::array kPrograms{
    KnownProgram{.name = "Firefox",
                 .family = Firefox,
                 .files = Known,
                 .homeProfiles = ".mozilla/firefox",
                 .configProfiles = "mozilla/firefox",
                 .cache = "mozilla",
                 .flatpaks = {{{"org.mozilla.firefox"}}},
                 .snap = {"firefox", ".mozilla/firefox"},
                 .processes = {"firefox", "firefox-bin", "firefox-esr"}},
    KnownProgram{.name = "LibreWolf",
                 .family = Firefox,
                 .homeProfiles = ".librewolf",
                 .cache = "librewolf",
                 .flatpaks = {{{"io.gitlab.librewolf-community", kNoProfiles}}},
                 .processes = {"librewolf", "librewolf-bin"}},
    KnownProgram{.name = "Chrome",
                 .family = Chromium,
                 .files = Known,
                 .configProfiles = "google-chrome",
                 .cache = "google-chrome",
                 .channels = {{{"Chrome Beta", "google-chrome-beta"},
                               {"Chrome Dev", "google-chrome-unstable"}}},
                 .flatpaks = {{{"com.google.Chrome"}, {"com.google.ChromeDev", kNoProfiles}}},
                 .processes = {"chrome"}},
    // In a sandbox its process has the other browser's name. Outside, its lock tells that it runs,
    // under any name.
    KnownProgram{.name = "Chromium",
                 .family = Chromium,
                 .files = Known,
                 .configProfiles = "chromium",
                 .cache = "chromium",
                 .flatpaks = {{{"org.chromium.Chromium"},
                               {"io.github.ungoogled_software.ungoogled_chromium", kNoProfiles}}},
                 .snap = {"chromium", "chromium", Unknown},
                 .processes = {"chromium", "chromium-browser"},
                 .sandboxProcesses = {"chrome"}},
    KnownProgram{.name = "Brave",
                 .family = Chromium,
                 .files = Known,
                 .configProfiles = "BraveSoftware/Brave-Browser",
                 .cache = "BraveSoftware",
                 .flatpaks = {{{"com.brave.Browser"}}},
                 .snap = {"brave"},
                 .processes = {"brave"}},
    KnownProgram{
        .name = "Edge",
        .family = Chromium,
        .files = Known,
        .configProfiles = "microsoft-edge",
        .cache = "microsoft-edge",
        .channels = {{{"Edge Beta", "microsoft-edge-beta"}, {"Edge Dev", "microsoft-edge-dev"}}},
        .flatpaks = {{{"com.microsoft.Edge"}, {"com.microsoft.EdgeDev", kNoProfiles}}},
        .processes = {"msedge"}},
    KnownProgram{.name = "Vivaldi",
                 .family = Chromium,
                 .files = Known,
                 .configProfiles = "vivaldi",
                 .cache = "vivaldi",
                 .channels = {{{"Vivaldi Snapshot", "vivaldi-snapshot"}}},
                 .flatpaks = {{{"com.vivaldi.Vivaldi"}}},
                 .snap = {"vivaldi"},
                 .processes = {"vivaldi-bin"}},
    KnownProgram{.name = "Opera",
                 .family = Chromium,
                 .configProfiles = "opera",
                 .cache = "opera",
                 .flatpaks = {{{"com.opera.Opera", kNoProfiles}}},
                 .snap = {"opera"},
                 .processes = {"opera"}},
    KnownProgram{.name = "GNOME Web",
                 .cache = "epiphany",
                 .flatpaks = {{{"org.gnome.Epiphany", kNoProfiles}}},
                 .processes = {"epiphany", "epiphany-browser"}},
    KnownProgram{.name = "Falkon",
                 .cache = "falkon",
                 .flatpaks = {{{"org.kde.falkon", kNoProfiles}}},
                 .processes = {"falkon"}},
    KnownProgram{.name = "Konqueror", .cache = "konqueror", .processes = {"konqueror"}},
    KnownProgram{.name = "qutebrowser",
                 .cache = "qutebrowser",
                 .flatpaks = {{{"org.qutebrowser.qutebrowser", kNoProfiles}}},
                 .processes = {"qutebrowser"}},
    KnownProgram{.name = "Thunderbird",
                 .family = Firefox,
                 .homeProfiles = ".thunderbird",
                 .cache = "thunderbird",
                 .flatpaks = {{{"org.mozilla.Thunderbird"}, {"org.mozilla.thunderbird"}}},
                 .snap = {"thunderbird", ".thunderbird", Unknown},
                 .processes = {"thunderbird", "thunderbird-bin", "thunderbird-esr"}},
    // Its services run in every session of GNOME. They hold open the mail and the calendars that
    // are kept there for use without a network.
    KnownProgram{.name = "Evolution",
                 .cache = "evolution",
                 .flatpaks = {{{"org.gnome.Evolution", kNoProfiles}}},
                 .processes = {"evolution", "evolution-source-registry",
                               "evolution-calendar-factory", "evolution-addressbook-factory"}},
    KnownProgram{.name = "Geary",
                 .cache = "geary",
                 .flatpaks = {{{"org.gnome.Geary", kNoProfiles}}},
                 .processes = {"geary"}},
    KnownProgram{.name = "KMail",
                 .cache = "kmail2",
                 .flatpaks = {{{"org.kde.kontact", kNoProfiles}}},
                 .processes = {"kmail", "kontact"}},
};

constexpr std::array kMailPrograms{
    KnownMailProgram{"Claws Mail", "claws-mail", ".claws-mail/mimetmp"},
    KnownMailProgram{"Sylpheed", "sylpheed", ".sylpheed-2.0/mimetmp"},
};

QStringList cleanedBrowsers(ProgramFamily family)
{
    QStringList names;
    for (const KnownProgram &program : kPrograms) {
        if (program.files == Known && program.family == family)
            names.append(QString::fromLatin1(program.name));
    }
    return names;
}

QStringList cleanedMailPrograms()
{
    QStringList names;
    for (const KnownMailProgram &program : kMailPrograms)
        names.append(QString::fromLatin1(program.name));
    return names;
}

QString numberWord(qsizetype number)
{
    constexpr std::array kWords{"none", "one",   "two",   "three", "four", "five",
                                "six",  "seven", "eight", "nine",  "ten"};
    const auto index = static_cast<std::size_t>(number);
    return index < kWords.size() ? QString::fromLatin1(kWords[index]) : QString::number(number);
}

} // namespace

std::span<const KnownProgram> knownPrograms()
{
    return kPrograms;
}

std::span<const KnownMailProgram> knownMailPrograms()
{
    return kMailPrograms;
}

QString withProgramNames(QString text)
{
    const QStringList chromiums = cleanedBrowsers(Chromium);
    return text
        .replace(QLatin1String("{browsers}"), enumerated(cleanedBrowsers(Firefox) + chromiums))
        .replace(QLatin1String("{mail programs}"), enumerated(cleanedMailPrograms()))
        .replace(QLatin1String("{chromiums}"), numberWord(chromiums.size()));
}
