#pragma once

namespace Orvane {

/// A half-open range of rows.
struct RowRange {
    int begin, end;
    bool isEmpty() const { return begin >= end; }
};

/// Replaces [begin, end) with the share of thread `index` out of `count`: bands of equal height,
/// the quotient taken upwards, the last thread ending at the end. A thread past the last row gets a
/// range whose begin is not below its end. The whole range stays when index is below 0 or count
/// below 1.
void splitRange(int& begin, int& end, int index, int count);

}  // namespace Orvane
