#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/soak/fuzz/Edits.h"
#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Must.h"

#include <QCryptographicHash>

namespace {

constexpr auto kChecksum = QCryptographicHash::Sha256;

enum class Mode { Bytes, Sealed, Damaged, SealedAfterDamage };
constexpr int kModes = 4;

/// Remembers whether a folder was opened.
class OpenedRoots final : public ForwardingSystemCalls
{
public:
    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        m_isUsed = true;
        return ForwardingSystemCalls::openRoot(path);
    }

    bool isUsed() const { return m_isUsed; }

private:
    mutable bool m_isUsed = false;
};

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
    const OpenedRoots calls;
    const auto found = resolveGrant(calls, grant);
    if (!isSealed(grant) && (found || calls.isUsed()))
        return "damaged bytes lead to a folder";
    if (!found)
        return grant == place().grant ? "the grant does not lead to its folder" : "";
    const auto granted = hostSystemCalls().openRoot(place().path.constData());
    const auto status = hostSystemCalls().statusOf(found->folder->get());
    const auto expected = hostSystemCalls().statusOf(granted.value().get());
    if (!status || !expected || status->inodeId() != expected->inodeId() ||
        found->url.path() != place().path)
        return "the grant leads to another folder";
    return {};
}
