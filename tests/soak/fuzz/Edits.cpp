#include "tests/soak/fuzz/Edits.h"

namespace {

constexpr qsizetype kBytesPerEdit = 4;

enum class Edit : quint8 { Replace, Insert, Remove, FlipBit, Cut, Repeat, Zeros, Swap };
constexpr int kEdits = 8;

struct Change
{
    Edit edit;
    qsizetype at; ///< inside the bytes
    char value;
};

void apply(QByteArray &bytes, const Change &change)
{
    constexpr int kBits = 8;
    constexpr qsizetype kRun = 8;
    const auto value = static_cast<quint8>(change.value);
    switch (change.edit) {
    case Edit::Replace:
        bytes[change.at] = change.value;
        break;
    case Edit::Insert:
        bytes.insert(change.at, change.value);
        break;
    case Edit::Remove:
        bytes.remove(change.at, 1 + value % kRun);
        break;
    case Edit::FlipBit:
        bytes[change.at] = static_cast<char>(bytes[change.at] ^ (1 << (value % kBits)));
        break;
    case Edit::Cut:
        bytes.truncate(change.at);
        break;
    case Edit::Repeat:
        bytes.insert(change.at, bytes.mid(change.at, 1 + value));
        break;
    case Edit::Zeros:
        bytes.replace(change.at, 1 + value % kRun, QByteArray(1 + value % kRun, '\0'));
        break;
    case Edit::Swap:
        std::swap(bytes[change.at], bytes[value % bytes.size()]);
        break;
    }
}

} // namespace

qsizetype editCount(const QByteArray &edits)
{
    return edits.size() / kBytesPerEdit;
}

QByteArray edited(QByteArray whole, const QByteArray &edits)
{
    constexpr int kByte = 256;
    for (qsizetype i = 0; i < editCount(edits) && !whole.isEmpty(); ++i) {
        const QByteArray bytes = edits.sliced(i * kBytesPerEdit, kBytesPerEdit);
        const int place = quint8(bytes[1]) * kByte + quint8(bytes[2]);
        apply(whole, {Edit(quint8(bytes[0]) % kEdits), place % whole.size(), bytes[3]});
    }
    return whole;
}

ModedInput::ModedInput(const QByteArray &input, int modes)
{
    if (input.isEmpty())
        return;
    mode = quint8(input.front()) % modes;
    rest = input.sliced(1);
}
