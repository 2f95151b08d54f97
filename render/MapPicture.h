#pragma once

/// Pictures of the maps of a fill: 8 bits, one pixel for each pixel of the fill rectangle.

#include "ofx/tesseretObserver.h"
#include "picture/Picture.h"

namespace Tesseret::Render {

/// Black for 0 to white for the map's full value; black outside the map.
Picture greyPicture(const TesseretMapV1& map);

/// As `greyPicture`, but from a dark grey for the weakest positive value to white for the
/// strongest, so that the whole band is visible.
Picture bandPicture(const TesseretMapV1& map);

/// Every block in a colour of its own with dark lines between blocks; black where there is none.
Picture blockPicture(const TesseretMapV1& map);

/// Grey where the factor is 1, bluer below and more orange above, with the full colours from a
/// quarter down and from four up. Darker where the texture is not used: where `used`, a grey
/// picture over the fill rectangle, is black.
Picture gainPicture(const TesseretMapV1& map, const Picture& used);

/// The minimum and maximum of some numbers; without numbers the minimum is greater.
struct MapRange {
    float least, greatest;
};
/// Of the whole map.
MapRange rangeOf(const TesseretMapV1& map);
/// Of the pixels where `used` is not black.
MapRange rangeOf(const TesseretMapV1& map, const Picture& used);

/// The background for the path: the region of a grey picture and its band, both dimmed. The
/// pictures have the same size.
Picture dimmed(const Picture& region, const Picture& band);

/// Draws the path in yellow with a darker rim, inside the picture's bounds.
void drawPath(const TesseretPathV1& path, Picture& picture);

}  // namespace Tesseret::Render
