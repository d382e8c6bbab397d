#include "slices/removal/ParallelRemover.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace {

using EntryOutcome = RemovalSteps::EntryOutcome;

constexpr std::size_t kStretch = 512;
/// With what the threads' own removers hold open, this fits into 64 descriptors.
constexpr int kMostFolders = 16;

} // namespace

/// A folder whose entries several threads deal with. Held open until the last is done.
struct ParallelRemover::SharedFolder
{
    FolderPointer around; ///< nothing for the outermost, which is the caller's
    std::size_t indexAround = 0;
    FileDescriptor owned;
    HeldFolder held;
    FolderListing listing;
    LentRights rights;
    std::atomic<std::size_t> openWork = 1; ///< jobs, folders inside, and the thread that sets it up
    std::atomic<bool> stays = false;
    std::atomic<bool> isLost = false; ///< it was moved away

    EntryRef ref(std::size_t index, AsideSlot *slot = nullptr) const
    {
        return {held.descriptor, held.path, listing.name(listing.at(index)), held.state, slot};
    }
};

/// One thread's part.
class ParallelRemover::Worker final
{
public:
    explicit Worker(ParallelRemover &parallel)
        : m_parallel(parallel),
          m_remover(parallel.m_steps, parallel.m_stop),
          m_space(kListingSpace),
          m_slot(parallel.m_steps.slot(AsideSlot::FolderUse::Shared))
    {
    }

    void run();

private:
    void perform(const Job &job);
    void deal(const Job &job);
    void dealWithEach(const Job &job);
    void enter(const Job &job);
    void empty(const FolderPointer &folder);
    void share(const FolderPointer &folder);
    bool isInPlace(SharedFolder &folder);

    ParallelRemover &m_parallel;
    SequentialRemover m_remover;
    std::vector<char> m_space;
    AsideSlot m_slot;
    PlaceCheck m_placeCheck;
};

void ParallelRemover::Worker::run()
{
    Job job;
    while (m_parallel.take(job)) {
        m_parallel.guarded(*job.folder, [&] { perform(job); });
        m_parallel.release(std::move(job.folder));
        m_parallel.finishJob();
    }
}

void ParallelRemover::Worker::perform(const Job &job)
{
    if (m_parallel.isStopped())
        job.folder->stays = true;
    else if (job.kind == Job::Kind::Deal)
        deal(job);
    else
        enter(job);
}

void ParallelRemover::Worker::deal(const Job &job)
{
    SharedFolder &folder = *job.folder;
    m_parallel.guarded(folder, [&] { dealWithEach(job); });
    m_parallel.guarded(folder, [&] {
        if (m_parallel.m_steps.emptySlot(m_slot, folder.held.path) == EntryOutcome::Stays)
            folder.stays = true;
    });
}

void ParallelRemover::Worker::dealWithEach(const Job &job)
{
    SharedFolder &folder = *job.folder;
    std::vector<Job> inside;
    for (std::size_t i = job.first; i < job.last; ++i) {
        if (m_parallel.isStopped() || !isInPlace(folder)) {
            folder.stays = true;
            break;
        }
        const auto outcome = m_parallel.m_steps.deal(folder.ref(i, &m_slot), folder.listing.at(i),
                                                     folder.held.policy);
        if (outcome == EntryOutcome::Stays) {
            folder.stays = true;
            m_placeCheck.hurry();
        } else if (outcome == EntryOutcome::Enter) {
            inside.push_back({Job::Kind::Enter, job.folder, i, i + 1});
        }
    }
    m_parallel.add(std::move(inside));
}

/// What was moved away with a folder is no longer part of the cleaning.
bool ParallelRemover::Worker::isInPlace(SharedFolder &folder)
{
    if (folder.isLost)
        return false;
    if (!m_placeCheck.isDue())
        return true;
    const bool isInPlace =
        m_parallel.m_steps.isInPlace(folder.held.descriptor, {}, folder.held.way.around);
    m_placeCheck.done();
    if (isInPlace)
        return true;
    if (!folder.isLost.exchange(true))
        m_parallel.m_steps.abandon(folder.held.path.chopped(1), ESTALE);
    return false;
}

void ParallelRemover::Worker::enter(const Job &job)
{
    const EntryRef ref = job.folder->ref(job.first);
    auto entered = m_parallel.m_steps.enter(ref, job.folder->listing.at(job.first), m_space);
    if (!entered) {
        if (entered.error() == EntryOutcome::Stays)
            job.folder->stays = true;
        return;
    }
    const auto folder = std::make_shared<SharedFolder>();
    folder->owned = std::move(entered->descriptor);
    folder->rights = std::move(entered->rights);
    folder->held = {folder->owned.get(),
                    ref.path() + '/',
                    EntryPolicy::Removed,
                    entered->state,
                    {&job.folder->held.way, entered->inode}};
    folder->listing = std::move(entered->listing);
    folder->indexAround = job.first;
    folder->around = job.folder;
    ++folder->around->openWork;
    m_parallel.guarded(*folder, [&] { empty(folder); });
    m_parallel.release(folder);
}

void ParallelRemover::Worker::empty(const FolderPointer &folder)
{
    if (m_parallel.m_aliveFolders++ < kMostFolders)
        share(folder);
    else if (!m_remover.removeListed(folder->held, std::exchange(folder->listing, {})))
        folder->stays = true;
}

/// Hands out all stretches of the folder except the first, which this thread takes at once.
void ParallelRemover::Worker::share(const FolderPointer &folder)
{
    m_parallel.add(m_parallel.stretchesOf(folder, kStretch));
    deal({Job::Kind::Deal, folder, 0, std::min(kStretch, folder->listing.size())});
}

ParallelRemover::ParallelRemover(const RemovalSteps &steps, std::stop_token stop, unsigned threads)
    : m_steps(steps), m_stop(std::move(stop)), m_threads(threads)
{
}

void ParallelRemover::removeListed(const HeldFolder &folder, FolderListing listing)
{
    Worker worker(*this); // before there are jobs that only it may do
    m_path = folder.path;
    const auto outermost = std::make_shared<SharedFolder>();
    outermost->held = folder;
    outermost->listing = std::move(listing);
    add(stretchesOf(outermost, 0));

    std::vector<std::jthread> helpers;
    try {
        while (helpers.size() + 1 < m_threads)
            helpers.emplace_back([this] { help(); });
    } catch (const std::system_error &) {
        // The system gives no more threads: those that run do all the work.
    } catch (const std::bad_alloc &) {
        // The same.
    }
    worker.run();
}

void ParallelRemover::help()
{
    try {
        Worker(*this).run();
    } catch (const std::bad_alloc &) {
        // No room for another worker: those that run do all the work.
    }
}

/// A job whose memory runs out leaves its folder, and ends like any other: else those that wait for
/// it would wait for ever, and the folders around would keep the rights that are not theirs.
template <typename Work> void ParallelRemover::guarded(SharedFolder &folder, const Work &work)
{
    try {
        work();
    } catch (const std::bad_alloc &) {
        folder.stays = true;
        if (!m_ranOutOfMemory.exchange(true))
            m_steps.ranOutOfMemory(m_path);
    }
}

/// The entries from `first` on, in jobs that each hold on to the folder.
std::vector<ParallelRemover::Job> ParallelRemover::stretchesOf(const FolderPointer &folder,
                                                               std::size_t first) const
{
    std::vector<Job> stretches;
    for (; first < folder->listing.size(); first += kStretch) {
        const std::size_t last = std::min(first + kStretch, folder->listing.size());
        stretches.push_back({Job::Kind::Deal, folder, first, last});
    }
    return stretches;
}

bool ParallelRemover::take(Job &job)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_jobs.empty() || m_unfinished == 0; });
    if (m_jobs.empty())
        return false;
    job = std::move(m_jobs.back());
    m_jobs.pop_back();
    return true;
}

/// The first of them will be the next to be taken. Counts them when they are in, so that the counts
/// are right if there is no memory for them.
void ParallelRemover::add(std::vector<Job> jobs)
{
    if (jobs.empty())
        return;
    {
        const std::scoped_lock lock(m_mutex);
        const std::size_t before = m_jobs.size();
        m_jobs.insert(m_jobs.end(), std::make_move_iterator(jobs.rbegin()),
                      std::make_move_iterator(jobs.rend()));
        for (std::size_t i = before; i < m_jobs.size(); ++i)
            ++m_jobs[i].folder->openWork;
        m_unfinished += m_jobs.size() - before;
    }
    m_changed.notify_all();
}

/// A job adds its new jobs before it finishes, so that the count reaches zero only at the end.
void ParallelRemover::finishJob()
{
    const std::scoped_lock lock(m_mutex);
    if (--m_unfinished == 0)
        m_changed.notify_all();
}

/// The thread that gives up the last hold on a folder removes it, and then perhaps the folder
/// around it.
void ParallelRemover::release(FolderPointer folder)
{
    while (--folder->openWork == 0 && folder->around) {
        const FolderPointer around = folder->around;
        folder->rights.giveBack();
        folder->owned.reset();
        --m_aliveFolders;
        guarded(*around, [&] {
            if (folder->stays || isStopped() || !isRemoved(*folder))
                around->stays = true;
        });
        m_steps.tellOfRights(around->ref(folder->indexAround), folder->rights);
        folder = around;
    }
}

/// Whether a folder that is empty now is gone, or is removed later.
bool ParallelRemover::isRemoved(SharedFolder &folder) const
{
    const EntryRef ref = folder.around->ref(folder.indexAround);
    const std::uint64_t inode = folder.held.way.inode;
    if (!folder.around->held.emptied)
        return m_steps.removeFolder(ref, inode, folder.rights) == EntryOutcome::Gone;
    folder.around->held.emptied->add({ref.name, inode, std::move(folder.rights)});
    return true;
}
