#pragma once

#include <QByteArrayList>
#include <tl/expected.hpp>

/// What processes other than this one are using below an open folder, as paths relative to it, each
/// once: what they hold open, have mapped, run, work in, are shut into, or take connections at.
/// Deleted files that are still open are not among it. Some of the paths may not be there.
///
/// Sees only processes that this one may look into: usually those of the same user. An errno when
/// the processes cannot be listed or looked at. Any thread, but looks at every process: not for the
/// main one. Has to wait for no disk but the folder's own.
tl::expected<QByteArrayList, int> filesInUse(int folder);
