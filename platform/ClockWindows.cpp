#include <windows.h>

#include "platform/Clock.h"

namespace Orvane {

UtcTime utcNow()
{
    SYSTEMTIME utc{};
    GetSystemTime(&utc);
    return {utc.wYear, utc.wMonth, utc.wDay, utc.wHour, utc.wMinute, utc.wSecond};
}

}  // namespace Orvane
