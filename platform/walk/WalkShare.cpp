#include "platform/walk/WalkShare.h"

#include <algorithm>

void FolderNames::add(std::string_view name)
{
    m_bytes.resize(m_used);
    m_bytes.insert(m_bytes.end(), name.begin(), name.end());
    m_bytes.push_back('\0');
    m_used = m_bytes.size();
    ++m_count;
}

const char *FolderNames::takeLast()
{
    const std::string_view others(m_bytes.data(), m_used - 1);
    const std::size_t nul = others.rfind('\0');
    m_used = nul == std::string_view::npos ? 0 : nul + 1;
    --m_count;
    return m_bytes.data() + m_used;
}

FolderNames FolderNames::takeFirstHalf()
{
    FolderNames half;
    auto cut = m_bytes.begin();
    for (; half.m_count < (m_count + 1) / 2; ++half.m_count)
        cut = std::find(cut, m_bytes.end(), '\0') + 1;
    half.m_bytes.assign(m_bytes.begin(), cut);
    half.m_used = half.m_bytes.size();
    m_bytes.erase(m_bytes.begin(), cut);
    m_used -= half.m_used;
    m_count -= half.m_count;
    return half;
}

void FolderNames::clear()
{
    m_used = 0;
    m_count = 0;
}
