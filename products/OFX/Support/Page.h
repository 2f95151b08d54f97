#pragma once

#include <span>
#include <string>
#include <vector>

#include "ofx/ofxParam.h"
#include "products/OFX/Support/Param.h"

namespace Orvane {

/// The names of the markers in a page's list: the first closes a row, the second leaves a cell
/// empty.
inline constexpr const char* kRowEndName = "end";
inline constexpr const char* kEmptyCellName = "null";

/// A page of controls, written as rows; every row ends with the row-end marker.
class OvOfxPage final : public OvOfxCoded<OvOfxParam, 49> {
public:
    using OvOfxCoded::OvOfxCoded;
    std::vector<const OvOfxParam*> children;
};

/// The list of children as hosts expect it, column by column, with skip markers: each column holds
/// the entries at one position of the rows.
[[nodiscard]] std::vector<std::string> layOutPage(std::span<const OvOfxParam* const> children);

/// Whether every page fits on host pages of that many rows and columns.
[[nodiscard]] bool hasRoomForPages(std::span<const OvOfxPage* const> pages, int rows, int columns);

/// Defines a page and its children. Returns the host's status.
[[nodiscard]] OfxStatus definePage(const OvOfxPage& page, OfxParamSetHandle paramSet);

}  // namespace Orvane
