#include "largefiles/search/CurrentSizeReader.h"

#include "largefiles/search/ListedFiles.h"

void CurrentSizeReader::read(const FileUrls &files, Answer answer)
{
    m_job.run([&calls = m_calls, &access = m_access, files,
               answer = std::move(answer)](const std::stop_token &stop) {
        return [answer, sizes = currentSizes(calls, access, files, stop)] { answer(sizes); };
    });
}
