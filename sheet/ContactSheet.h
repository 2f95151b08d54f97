#pragma once

/// Many small pictures with labels on one large picture.

#include <cstddef>
#include <string>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Sheet {

struct Tile {
    Picture picture;      ///< RGBA, Byte, as it is to be seen
    std::string title;    ///< below it, in large letters
    std::string caption;  ///< below that, in as many lines as it takes
};

/// Tiles in a grid, row by row.
struct Group {
    std::string heading;  ///< above the grid; empty: none
    std::size_t columns = 1;
    std::vector<std::string> columnNames;  ///< above each column; empty: none
    std::vector<std::string> rowNames;     ///< left of each row; empty: none
    std::vector<Tile> tiles;
};

struct ContactSheet {
    std::string title;
    std::vector<Group> groups;  ///< one below the other, with columns of the same width
};

/// The sheet as one picture, RGBA, Byte, from (0, 0). Tiles keep their pixels. Throws
/// `PictureError` where there is not enough memory for it.
Picture drawn(const ContactSheet& sheet);

/// How many columns make a sheet of `count` tiles somewhat wider than high, with few empty places.
std::size_t columnsFor(std::size_t count, int tileWidth, int tileHeight);

}  // namespace Tesseret::Sheet
