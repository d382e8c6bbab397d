#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/soak/fuzz/Edits.h"
#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Must.h"

#include <QCryptographicHash>
#include <sys/stat.h>

namespace {

constexpr auto kChecksum = QCryptographicHash::Sha256;

enum class Mode { Bytes, Sealed, Damaged, SealedAfterDamage };
constexpr int kModes = 4;

/// A granted folder "anna" beside others, to which a damaged grant might lead.
struct GrantedPlace
{
    GrantedPlace()
    {
        for (const char *other : {"bnna", "ann", "annaa"})
            scratch.makeFolder(other);
        scratch.makeLink("lnna", path);
        const auto made = makeGrant(hostSystemCalls(), path);
        must(made.has_value(), "granting a folder");
        grant = *made;
    }

    QByteArray body() const { return grant.chopped(QCryptographicHash::hashLength(kChecksum)); }

    ScratchFolder scratch;
    QByteArray path = scratch.makeFolder("anna");
    QByteArray grant;
};

const GrantedPlace &place()
{
    static const GrantedPlace made;
    return made;
}

QByteArray sealed(const QByteArray &body)
{
    return body + QCryptographicHash::hash(body, kChecksum);
}

QByteArray grantFor(const ModedInput &input)
{
    switch (Mode(input.mode)) {
    case Mode::Bytes:
        return input.rest;
    case Mode::Sealed:
        return sealed(input.rest);
    case Mode::Damaged:
        return edited(place().grant, input.rest);
    case Mode::SealedAfterDamage:
        return sealed(edited(place().body(), input.rest));
    }
    Q_UNREACHABLE();
}

bool isSealed(const QByteArray &grant)
{
    const qsizetype size = grant.size() - QCryptographicHash::hashLength(kChecksum);
    return size > 0 && sealed(grant.first(size)) == grant;
}

} // namespace

/// Whatever the bytes are, they lead to the folder that was granted or to none. Damaged bytes do
/// not even open a folder.
QByteArray findingInGrant(const QByteArray &input)
{
    const QByteArray grant = grantFor(ModedInput(input, kModes));
    bool isOpened = false;
    const HookedSystem calls([&isOpened](int, std::string_view name) {
        isOpened = isOpened || name == "openRoot";
        return 0;
    });
    const auto found = resolveGrant(calls, grant);
    if (!isSealed(grant) && (found || isOpened))
        return "damaged bytes lead to a folder";
    if (!found)
        return grant == place().grant ? "the grant does not lead to its folder" : "";
    struct stat opened
    {
    };
    struct stat expected
    {
    };
    must(::lstat(place().path.constData(), &expected) == 0, "the granted folder");
    if (::fstat(found->folder->get(), &opened) != 0 || opened.st_dev != expected.st_dev ||
        opened.st_ino != expected.st_ino || found->url.path() != place().path)
        return "the grant leads to another folder";
    return {};
}
