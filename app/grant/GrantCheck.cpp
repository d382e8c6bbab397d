#include "app/grant/GrantCheck.h"

#include <utility>

void GrantCheck::ask(Answer answer)
{
    m_answer = std::move(answer);
    if (m_isLooking && m_grant == ResourceManager::storedGrant())
        m_isOutdated = true; // one look at a time, however many questions come
    else
        look();
}

void GrantCheck::look()
{
    m_isLooking = true;
    m_isOutdated = false;
    m_grant = ResourceManager::storedGrant();
    m_checks.run([this, grant = m_grant](const std::stop_token &) {
        return [this, failure = ResourceManager::check(grant)] { finish(failure); };
    });
}

void GrantCheck::finish(std::optional<GrantFailure> failure)
{
    m_isLooking = false;
    if (!m_answer)
        return;
    if (m_isOutdated || m_grant != ResourceManager::storedGrant())
        look();
    else
        std::exchange(m_answer, {})(failure);
}
