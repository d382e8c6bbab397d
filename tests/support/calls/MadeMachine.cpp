#include "tests/support/calls/MadeMachine.h"

#include "tests/support/calls/ForwardingSystemCalls.h"

class MadeMachine::Calls final : public ForwardingSystemCalls
{
public:
    explicit Calls(const MadeMachine &machine) : m_machine(machine) {}

    bool isRunning(std::int64_t process) const override
    {
        return m_machine.processes.contains(process);
    }
    SystemResult<QByteArrayList> programNames() const override { return m_machine.programs; }
    QByteArray hostName() const override { return "desk"; }
    bool seesAllProcesses() const override { return m_machine.isSeenWhole; }
    SystemResult<QByteArrayList> filesInUse(int folder) const override
    {
        ++m_machine.looksAtFiles;
        return m_machine.hasFilesOfTheHost ? hostSystemCalls().filesInUse(folder)
                                           : m_machine.usedFiles;
    }
    bool isListening(const char *socket) const override
    {
        return m_machine.servedSockets.contains(socket);
    }
    SystemResult<bool> isLocked(int) const override { return m_machine.locked; }

private:
    const MadeMachine &m_machine;
};

MadeMachine::MadeMachine() : m_calls(std::make_unique<Calls>(*this))
{
}

MadeMachine::~MadeMachine() = default;

void MadeMachine::setHook(HookedSystem::Hook hook)
{
    m_calls->setHook(std::move(hook));
}

MadeMachine::operator const SystemCalls &() const
{
    return *m_calls;
}
