#include "prefs/exclusions/FileToView.h"

#include "platform/base/ByteCount.h"
#include "platform/look/FileImages.h"
#include "slices/sizing/FolderSizing.h"

#include <filesystem>

namespace {

// A measurement uses several threads by itself; two at a time keep a small file from waiting for
// the one large folder before it.
constexpr unsigned kMeasurements = 2;

FileFacts factsAt(const QByteArray &path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path.toStdString(), error);
    FileFacts facts;
    if (status.type() == fs::file_type::not_found)
        facts.presence = FileFacts::Presence::Missing;
    else if (status.type() != fs::file_type::none)
        facts.presence = FileFacts::Presence::Present;
    if (status.type() == fs::file_type::directory)
        facts.kind = FileUrlKind::Folder;
    facts.iconName = genericIconName(path.mid(path.lastIndexOf('/') + 1));
    return facts;
}

QList<FileFacts> factsAt(const QList<QByteArray> &paths, const std::stop_token &stop)
{
    QList<FileFacts> all;
    for (const QByteArray &path : paths)
        all.append(stop.stop_requested() ? FileFacts() : factsAt(path));
    return all;
}

} // namespace

FileToView::FileToView(const SystemCalls &calls, AccessSource access, QObject *parent)
    : QObject(parent),
      m_calls(calls),
      m_access(std::move(access)),
      m_measurements(kMeasurements, ThreadPriority::BehindTheWindow)
{
}

FileToView::~FileToView()
{
    for (const Measurement &measurement : m_underWay)
        std::stop_source(measurement.stop).request_stop();
}

void FileToView::prepareFileForDisplay(const std::shared_ptr<File> &file,
                                       std::function<void()> completion)
{
    const bool isUnderWay = m_underWay.contains(file.get());
    Measurement &measurement = m_underWay[file.get()];
    measurement.completions.push_back(std::move(completion));
    if (isUnderWay)
        return;
    m_measurements.run([this, &calls = m_calls, source = m_access, file, url = file->fileURL(),
                        stop = measurement.stop](const std::stop_token &queueStop) {
        const std::stop_callback forward(queueStop,
                                         [&stop] { std::stop_source(stop).request_stop(); });
        FileAccess *access = source();
        const auto bytes =
            access ? std::optional(sizeForFolderAtPath(calls, *access, url, stop.get_token()))
                   : std::nullopt;
        return [this, file, bytes, stop] {
            if (stop.stop_requested())
                return;
            if (bytes)
                finish(file, *bytes);
            complete(*file);
        };
    });
}

void FileToView::finish(const std::shared_ptr<File> &file, qint64 bytes)
{
    file->setSize(bytes);
    file->setSizeString(stringFromByteCount(bytes));
}

void FileToView::complete(const File &file)
{
    // The completions may ask for more.
    const Measurement done = m_underWay.take(&file);
    for (const std::function<void()> &completion : done.completions)
        completion();
}

void FileToView::cancel(const File &file)
{
    if (m_underWay.contains(&file))
        m_underWay.take(&file).stop.request_stop();
}

void FileToView::lookAt(const QList<QByteArray> &paths,
                        std::function<void(const QList<FileFacts> &)> answer)
{
    m_looks.run(
        [source = m_access, paths, answer = std::move(answer)](const std::stop_token &stop) {
            std::optional<AccessScope> scope;
            if (FileAccess *access = source())
                scope.emplace(*access);
            QList<FileFacts> facts = factsAt(paths, stop);
            return [answer, facts = std::move(facts)] { answer(facts); };
        });
}
