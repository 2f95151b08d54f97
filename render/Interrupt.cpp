#include "render/Interrupt.h"

#include <atomic>
#include <csignal>

namespace Tesseret::Render {

namespace {

std::atomic<int> interrupts{0};
std::atomic<Host::Instance*> target{nullptr};
static_assert(std::atomic<Host::Instance*>::is_always_lock_free, "used in a signal handler");

extern "C" void handleInterrupt(int signal)
{
    if (interrupts.fetch_add(1) > 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    if (Host::Instance* const instance = target.load()) instance->abort();
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

InterruptTarget::InterruptTarget(Host::Instance& instance)
{
    target.store(&instance);
    if (isInterrupted()) instance.abort();  // it came before this object existed
}

InterruptTarget::~InterruptTarget()
{
    target.store(nullptr);
}

}  // namespace Tesseret::Render
