#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

/// Runs jobs on threads of its own, in the order of their coming. push() from any thread.
class WorkQueue final
{
public:
    /// A job should end soon after its token says so.
    using Job = std::function<void(const std::stop_token &)>;

    explicit WorkQueue(unsigned threads);
    /// Stops: waiting jobs are forgotten, running ones are told and waited for.
    ~WorkQueue();
    WorkQueue(const WorkQueue &) = delete;
    WorkQueue &operator=(const WorkQueue &) = delete;

    void push(Job job);

private:
    void run(const std::stop_token &stop);

    std::mutex m_mutex; ///< guards the jobs
    std::condition_variable_any m_arrived;
    std::deque<Job> m_jobs;
    std::vector<std::jthread> m_threads; ///< last: they end before what they use
};
