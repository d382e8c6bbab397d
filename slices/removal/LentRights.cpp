#include "slices/removal/LentRights.h"

#include "platform/system/SystemCalls.h"

#include <cerrno>
#include <new>
#include <utility>

LentRights::LentRights(const SystemCalls &calls, int folder, std::uint16_t former)
    : m_calls(&calls), m_folder(folder), m_former(former)
{
}

LentRights::~LentRights()
{
    giveBack();
}

LentRights::LentRights(LentRights &&other) noexcept
    : m_calls(other.m_calls),
      m_folder(other.m_folder),
      m_former(std::exchange(other.m_former, std::nullopt)),
      m_error(std::exchange(other.m_error, 0))
{
}

LentRights &LentRights::operator=(LentRights &&other) noexcept
{
    std::swap(m_calls, other.m_calls);
    std::swap(m_folder, other.m_folder);
    std::swap(m_former, other.m_former);
    std::swap(m_error, other.m_error);
    return *this;
}

void LentRights::giveBack() noexcept
{
    if (!m_former || m_folder == kClosed)
        return;
    try {
        const auto changed = m_calls->setPermissions(m_folder, *m_former);
        m_error = changed ? 0 : changed.error();
    } catch (const std::bad_alloc &) {
        m_error = ENOMEM;
    }
    m_former.reset();
}

void LentRights::forget()
{
    m_former.reset();
    m_error = 0;
}

std::optional<int> LentRights::failure() const
{
    if (m_former)
        return ESTALE;
    return m_error != 0 ? std::optional(m_error) : std::nullopt;
}
