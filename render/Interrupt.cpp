#include "render/Interrupt.h"

#include <array>
#include <atomic>
#include <csignal>

namespace Tesseret::Render {

namespace {

std::atomic<int> interrupts{0};
std::array<std::atomic<Host::Instance*>, kMaxTargets> targets{};
static_assert(std::atomic<Host::Instance*>::is_always_lock_free, "used in a signal handler");

extern "C" void handleInterrupt(int signal)
{
    if (interrupts.fetch_add(1) > 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    for (const auto& target : targets) {
        if (Host::Instance* const instance = target.load()) instance->abort();
    }
}

}  // namespace

void catchInterrupts()
{
    std::signal(SIGINT, handleInterrupt);
    std::signal(SIGTERM, handleInterrupt);
}

bool isInterrupted()
{
    return interrupts.load() > 0;
}

void forgetInterrupts()
{
    interrupts.store(0);
}

InterruptTarget::InterruptTarget(Host::Instance& instance)
{
    for (slot_ = 0; slot_ < kMaxTargets; ++slot_) {
        Host::Instance* none = nullptr;
        if (targets[std::size_t(slot_)].compare_exchange_strong(none, &instance)) break;
    }
    if (isInterrupted()) instance.abort();  // it came before this object existed
}

InterruptTarget::~InterruptTarget()
{
    if (slot_ < kMaxTargets) targets[std::size_t(slot_)].store(nullptr);
}

}  // namespace Tesseret::Render
