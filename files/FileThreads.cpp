#include "files/FileThreads.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/Processors.h"

namespace Tesseret::Files {

namespace {

std::atomic<unsigned> chosen{0};

class Work {
public:
    Work(std::size_t count, const std::function<void(std::size_t)>& work)
        : count_(count), work_(work)
    {}

    /// Takes the next number until none is left.
    void run()
    {
        for (std::size_t i = next_++; i < count_; i = next_++) {
            try {
                work_(i);
            } catch (...) {
                keep(i, std::current_exception());
                next_ = count_;
            }
        }
    }

    void rethrow() const
    {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    void keep(std::size_t number, std::exception_ptr failure)
    {
        const std::lock_guard lock(mutex_);
        if (failure_ && failed_ < number) return;
        failed_ = number;
        failure_ = std::move(failure);
    }

    const std::size_t count_;
    const std::function<void(std::size_t)>& work_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;  ///< guards the members below
    std::size_t failed_ = 0;
    std::exception_ptr failure_;
};

}  // namespace

void useThreads(unsigned count)
{
    chosen = count != 0 ? count : Orvane::availableProcessors();
}

unsigned chosenThreads()
{
    return chosen;
}

void inParallel(std::size_t count, const std::function<void(std::size_t)>& work)
{
    const unsigned threads = chosen != 0 ? unsigned{chosen} : Orvane::availableProcessors();
    Work shared(count, work);
    {
        std::vector<std::jthread> helpers;
        try {
            while (helpers.size() + 1 < std::min<std::size_t>(threads, count)) {
                helpers.emplace_back([&shared] { shared.run(); });
            }
        } catch (const std::system_error&) {
            // The system has no more threads: those that run do all the work.
        }
        shared.run();
    }
    shared.rethrow();
}

}  // namespace Tesseret::Files
