#include "app/settings/SettingsFile.h"
#include "app/settings/SettingsKeys.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/soak/fuzz/Edits.h"
#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Must.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

namespace {

enum class Mode { Bytes, Sealed, Damaged };
constexpr int kModes = 3;

/// The checksum as the settings' file has it, worked out bit by bit.
quint32 crcOf(const QByteArray &bytes)
{
    constexpr quint32 kPolynomial = 0xedb88320;
    constexpr int kBits = 8;
    quint32 crc = ~0U;
    for (const char byte : bytes) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < kBits; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? kPolynomial : 0);
    }
    return ~crc;
}

QByteArray sealed(const QByteArray &text)
{
    constexpr int kDigits = 8;
    constexpr int kHex = 16;
    return text + "\n#crc32 " + QByteArray::number(crcOf(text), kHex).rightJustified(kDigits, '0') +
           '\n';
}

/// The text of a file that is whole.
std::optional<QByteArray> textIn(const QByteArray &file)
{
    const qsizetype seal = sealed({}).size();
    const QByteArray text = file.chopped(std::min(seal, file.size()));
    return file == sealed(text) ? std::optional(text) : std::nullopt;
}

const QByteArray &goodFile()
{
    static const QByteArray good = sealed(settingsText(
        {{{VNTExcludedPathsString, QJsonArray{QStringLiteral("file:///home/anna/Documents/"),
                                              QStringLiteral("file:///home/anna/Downloads/Keep/"),
                                              QStringLiteral("file:///home/anna/a%FF.txt")}},
          {VNTTotalCleanedSize, 1234567}},
         {}}));
    return good;
}

QByteArray fileFor(const ModedInput &input)
{
    switch (Mode(input.mode)) {
    case Mode::Bytes:
        return input.rest;
    case Mode::Sealed:
        return sealed(input.rest);
    case Mode::Damaged:
        return edited(goodFile(), input.rest);
    }
    Q_UNREACHABLE();
}

/// A folder with these settings and nothing else.
class FuzzedSettings final
{
public:
    explicit FuzzedSettings(const QByteArray &bytes)
    {
        QDir folder(path());
        for (const QString &name : folder.entryList(QDir::Files))
            folder.remove(name);
        QFile file(folder.filePath(QStringLiteral("settings.json")));
        must(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
             "writing settings");
    }

    static SettingsContent load() { return SettingsFile(path(), hostSystemCalls()).load(); }

private:
    static QString path()
    {
        static const ScratchFolder scratch;
        return QFile::decodeName(scratch.path());
    }
};

} // namespace

/// A whole file gives exactly what it says. Any other gives nothing at all and says so, in the next
/// run too: never a part of the exclusions, and never others.
QByteArray findingInSettingsFile(const QByteArray &input)
{
    const ModedInput moded(input, kModes);
    const QByteArray file = fileFor(moded);
    const auto text = textIn(file);
    const auto expected = text ? settingsFromText(*text) : std::nullopt;
    const FuzzedSettings settings(file);
    const SettingsContent found = FuzzedSettings::load();
    if (expected)
        return found == *expected ? "" : "a whole file gives another content";
    if (!found.values.isEmpty())
        return "a damaged file gives a content";
    if (found.damage.isEmpty() || FuzzedSettings::load().damage.isEmpty())
        return "a damaged file counts as none";
    return {};
}
