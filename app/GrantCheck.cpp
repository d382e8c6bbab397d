#include "app/GrantCheck.h"

#include <utility>

void GrantCheck::ask(Answer answer)
{
    m_answer = std::move(answer);
    if (!m_isUnderWay || m_grant != ResourceManager::storedGrant())
        look();
}

void GrantCheck::look()
{
    m_isUnderWay = true;
    m_grant = ResourceManager::storedGrant();
    m_task.ask([this, grant = m_grant](const std::stop_token &) {
        return [this, failure = ResourceManager::check(grant)] { finish(failure); };
    });
}

void GrantCheck::finish(std::optional<GrantFailure> failure)
{
    if (m_grant != ResourceManager::storedGrant()) {
        look(); // another folder was granted meanwhile, or none is any more
        return;
    }
    m_isUnderWay = false;
    if (const Answer answer = std::exchange(m_answer, {}))
        answer(failure);
}
