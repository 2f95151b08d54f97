#if !defined(_WIN32_WINNT) || _WIN32_WINNT < 0x0602
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0602  // WaitOnAddress came with Windows 8
#endif
#include <windows.h>

#include "platform/AtomicWait.h"

namespace Orvane {

void sleepWhile(const std::atomic<std::uint32_t>& value, std::uint32_t old)
{
    static_assert(sizeof(value) == sizeof(old));
    // The system only compares; the parameter has no const.
    WaitOnAddress(const_cast<std::atomic<std::uint32_t>*>(&value), &old, sizeof old, INFINITE);
}

void wakeAll(std::atomic<std::uint32_t>& value)
{
    WakeByAddressAll(&value);
}

}  // namespace Orvane
