#pragma once

namespace Orvane {

/// A moment in UTC; month and day count from 1.
struct UtcTime {
    int year, month, day, hour, minute, second;
};

/// The system clock now.
UtcTime utcNow();

}  // namespace Orvane
