#include "tests/support/disk/WatchedSystemCalls.h"

#include <QByteArray>
#include <algorithm>
#include <cstddef>
#include <dirent.h>
#include <vector>

void WatchedSystemCalls::sortRecords(std::span<char> records)
{
    std::vector<QByteArray> list;
    for (std::size_t at = 0; at < records.size();) {
        const char *record = records.data() + at;
        list.emplace_back(record, reinterpret_cast<const dirent64 *>(record)->d_reclen);
        at += list.back().size();
    }
    const auto nameOf = [](const QByteArray &record) {
        return QByteArray(record.constData() + offsetof(dirent64, d_name));
    };
    std::sort(list.begin(), list.end(),
              [&](const QByteArray &a, const QByteArray &b) { return nameOf(a) < nameOf(b); });
    char *end = records.data();
    for (const QByteArray &record : list)
        end = std::copy(record.begin(), record.end(), end);
}
