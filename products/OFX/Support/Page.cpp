#include "products/OFX/Support/Page.h"

#include <algorithm>
#include <cstddef>

#include "products/OFX/Support/ParamDefine.h"

namespace Orvane {
namespace {

struct PageExtent {
    int rows = 0;        // closed by a marker
    int longestRow = 0;  // entries of the longest row, empty cells included
};

bool endsRow(const OvOfxParam& entry)
{
    return entry.name == kRowEndName;
}

PageExtent measure(std::span<const OvOfxParam* const> children)
{
    PageExtent extent;
    int run = 0;
    for (const OvOfxParam* entry : children) {
        if (endsRow(*entry)) {
            ++extent.rows;
            run = 0;
        } else {
            extent.longestRow = std::max(extent.longestRow, ++run);
        }
    }
    return extent;
}

/// One column of the host's page: a cell per row, an empty text for an empty cell, and one more
/// cell for the marker that ends it.
using Column = std::vector<std::string>;

/// Puts the marker below the last used cell and fills the empty cells above it.
void closeColumn(Column& column)
{
    std::size_t used = column.size() - 1;
    while (used > 0 && column[used - 1].empty()) --used;
    column[used] = kOfxParamPageSkipColumn;
    std::replace(column.begin(), column.begin() + static_cast<std::ptrdiff_t>(used), std::string(),
                 std::string(kOfxParamPageSkipRow));
}

}  // namespace

std::vector<std::string> layOutPage(std::span<const OvOfxParam* const> children)
{
    const PageExtent extent = measure(children);
    std::vector<Column> columns(static_cast<std::size_t>(extent.longestRow),
                                Column(static_cast<std::size_t>(extent.rows) + 2));
    std::size_t row = 0;
    std::size_t position = 0;
    for (const OvOfxParam* entry : children) {
        if (endsRow(*entry)) {
            ++row;
            position = 0;
            continue;
        }
        if (entry->name != kEmptyCellName && !entry->excluded) {
            columns[position][row] = entry->name;
        }
        ++position;
    }

    std::vector<std::string> names;
    for (Column& column : columns) {
        closeColumn(column);
        std::ranges::copy_if(column, std::back_inserter(names),
                             [](const std::string& name) { return !name.empty(); });
    }
    return names;
}

bool hasRoomForPages(std::span<const OvOfxPage* const> pages, int rows, int columns)
{
    return std::ranges::all_of(pages, [&](const OvOfxPage* page) {
        const PageExtent extent = measure(page->children);
        return extent.rows <= rows && extent.longestRow <= columns;
    });
}

OfxStatus definePage(const OvOfxPage& page, OfxParamSetHandle paramSet)
{
    OvOfxPropertySet properties;
    if (const OfxStatus status =
            defineToHost(paramSet, kOfxParamTypePage, page.name.c_str(), properties)) {
        return status;
    }
    writeCommonProperties(page, properties);
    int index = 0;
    for (const std::string& child : layOutPage(page.children)) {
        properties.setString(kOfxParamPropPageChild, child.c_str(), index++);
    }
    return kOfxStatOK;
}

}  // namespace Orvane
