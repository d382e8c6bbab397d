#include "slices/home/ChatLogs.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// Chat programs, which call a conversation on the disk a "log": HexChat writes those of all
/// networks to ".config/hexchat/logs", WeeChat to ".local/share/weechat/logs", Pidgin to
/// ".purple/logs". They cannot be brought back, so such a folder is never taken for App Logs,
/// whether or not this program is known to use it. In lower case. Users of Telepathy know it as
/// "empathy"; "psi" stands for "psi+" too.
constexpr std::array<std::string_view, 54> kPrograms{
    "adium",   "bitchx",       "bitlbee",    "blightmud",   "catgirl",    "chatterino",
    "circe",   "convos",       "coyim",      "dino",        "element",    "empathy",
    "erc",     "finch",        "fluffychat", "fractal",     "gajim",      "gomuks",
    "halloy",  "hexchat",      "ircii",      "irssi",       "jami",       "kadu",
    "kiwiirc", "konversation", "kopete",     "kvirc",       "mcabber",    "miranda",
    "mudlet",  "neochat",      "nheko",      "nicotine",    "pesterchum", "pidgin",
    "poezio",  "polari",       "profanity",  "psi",         "purple",     "qtox",
    "quassel", "retroshare",   "riot",       "schildichat", "senpai",     "smuxi",
    "srain",   "telepathy",    "tkabber",    "tplogger",    "weechat",    "xchat",
};

bool isPartOfWord(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
}

/// Whether the name of a program is a word of the text, or begins or ends a word, as in
/// "quasselclient", "weechat-2" and "io.github.Hexchat".
bool isNamedIn(const QByteArray &text, std::string_view program)
{
    const QByteArrayView name(program.data(), static_cast<qsizetype>(program.size()));
    for (qsizetype at = text.indexOf(name); at >= 0; at = text.indexOf(name, at + 1)) {
        const qsizetype end = at + name.size();
        if (at == 0 || !isPartOfWord(text.at(at - 1)))
            return true;
        if (end == text.size() || !isPartOfWord(text.at(end)))
            return true;
    }
    return false;
}

} // namespace

bool isChatLogFolder(const QByteArray &path)
{
    const QByteArray text = path.toLower();
    return std::any_of(kPrograms.begin(), kPrograms.end(),
                       [&](std::string_view program) { return isNamedIn(text, program); });
}
