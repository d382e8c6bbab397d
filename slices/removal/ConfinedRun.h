#pragma once

#include "platform/system/ThreadConfinement.h"

#include <functional>
#include <vector>

/// Runs one step of a removal on a thread of its own, which the kernel confines to what the step
/// may change. Where the kernel can do it and yet fails, the step is not run. Where the kernel
/// cannot do it, the step runs unconfined.
///
/// The layers of rules all have to allow what the thread does. Used once, on one thread.
class ConfinedRun final
{
public:
    explicit ConfinedRun(const ThreadConfinement &confinement) : m_confinement(confinement) {}

    /// Begins another layer of rules.
    void addLayer();
    /// For the last layer. The folder is open.
    void allow(int folder, FolderRights rights);

    /// Returns when the step is done; an errno if it was not run. ENOMEM also if the memory ran out
    /// in its midst.
    SystemResult<void> run(const std::function<void()> &step);

private:
    SystemResult<void> enter() const;
    SystemResult<void> enterAndDo(const std::function<void()> &step) const noexcept;

    const ThreadConfinement &m_confinement;
    std::vector<FileDescriptor> m_layers;
    SystemResult<void> m_made; ///< the first failure
};
