#include "largefiles/FreshSizes.h"

#include "largefiles/ListedFiles.h"

void FreshSizes::read(const FileUrls &files, Answer answer)
{
    m_job.run([this, files, answer = std::move(answer)](const std::stop_token &stop) {
        return [answer, sizes = currentSizes(m_calls, m_access, files, stop)] { answer(sizes); };
    });
}
