#include "platform/AtomicWait.h"

namespace Orvane {

void sleepWhile(const std::atomic<std::uint32_t>& value, std::uint32_t old)
{
    value.wait(old, std::memory_order_acquire);
}

void wakeAll(std::atomic<std::uint32_t>& value)
{
    value.notify_all();
}

}  // namespace Orvane
