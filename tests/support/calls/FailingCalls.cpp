#include "tests/support/calls/FailingCalls.h"

#include "tests/support/calls/PossibleErrors.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <system_error>

namespace {

/// Calls that fail for good are many.
constexpr std::size_t kMostRemembered = 8;

} // namespace

std::vector<const char *> FailingCalls::made() const
{
    const std::scoped_lock lock(m_mutex);
    return m_made;
}

std::size_t FailingCalls::happened() const
{
    const std::scoped_lock lock(m_mutex);
    return m_happened.size();
}

bool FailingCalls::hasHappened(int error) const
{
    const std::scoped_lock lock(m_mutex);
    return std::ranges::find(m_happened, error, &Happened::error) != m_happened.end();
}

QByteArray FailingCalls::text() const
{
    const std::scoped_lock lock(m_mutex);
    QByteArray text;
    for (const Happened &each : m_happened)
        text += each.call + " (" +
                QByteArray::fromStdString(std::generic_category().message(each.error)) + ") ";
    return text.trimmed();
}

std::optional<int> FailingCalls::before(const char *call, int, const char *name) const
{
    const std::scoped_lock lock(m_mutex);
    m_made.push_back(call);
    for (const Fault &fault : m_faults) {
        const int error = errorOfLast(fault);
        if (error == 0)
            continue;
        const QByteArray number = QByteArray::number(qulonglong(m_made.size() - 1));
        if (m_happened.size() < kMostRemembered)
            m_happened.push_back({number + ' ' + call + ' ' + name, error});
        return error;
    }
    return {};
}

/// With which error the call that was made last fails by this fault; 0 for none.
int FailingCalls::errorOfLast(const Fault &fault) const
{
    const std::size_t number = m_made.size() - 1;
    const std::string_view name = m_made.back();
    const bool isLater =
        fault.lasts == Fault::Lasts::ForGood && number > fault.call && name == m_made[fault.call];
    if (number != fault.call && !isLater)
        return 0;
    const auto errors = possibleErrors(name);
    return fault.error.value_or(fault.which < errors.size() ? errors[fault.which] : 0);
}
