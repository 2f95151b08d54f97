#pragma once

/// How much a texture is like itself some pixels further.

#include <optional>
#include <vector>

namespace Tesseret::Quality {

/// Brightness with gaps, row by row.
struct Shades {
    int width = 0, height = 0;
    std::vector<float> values;  ///< differences from the local mean; 0 where unknown
    std::vector<float> known;   ///< 1 or 0
};

/// Correlation for the shifts (x, y) with |x| and y up to `reach`, from the pairs of pixels that
/// are both known.
class Autocorrelation {
public:
    Autocorrelation(const Shades& shades, int reach);

    /// 1 for no shift, less where there is hardly any texture; 0 for shifts with too few pairs. y
    /// may be negative.
    float at(int x, int y) const;
    int reach() const { return reach_; }
    /// The mean over shifts of about this length.
    float ring(int radius) const;
    /// The length of the shortest shift after which the texture repeats, as far as it repeats
    /// clearly. Shifts shorter than `least` are left out.
    std::optional<double> period(int least) const;

private:
    bool isPeak(int x, int y) const;

    int reach_;
    std::vector<float> values_;
};

}  // namespace Tesseret::Quality
