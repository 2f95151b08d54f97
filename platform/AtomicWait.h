#pragma once

#include <atomic>
#include <cstdint>

namespace Orvane {

/// Sleeps while the value is `old`, until `wakeAll`; may return earlier. As std::atomic::wait, of
/// which the runtime for Windows (GCC 12) can miss a wake-up between its look and its sleep.
void sleepWhile(const std::atomic<std::uint32_t>& value, std::uint32_t old);
/// Wakes all who sleep on the value.
void wakeAll(std::atomic<std::uint32_t>& value);

}  // namespace Orvane
