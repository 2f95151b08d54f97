#include "sheet/ContactSheet.h"

#include <algorithm>
#include <cmath>

#include "sheet/Lettering.h"

namespace Tesseret::Sheet {

namespace {

constexpr int kMargin = 16;       ///< round the sheet
constexpr int kGap = 12;          ///< between tiles
constexpr int kBelowPicture = 6;  ///< to the text
constexpr int kBetweenGroups = 16;
constexpr int kLeastColumn = 180;  ///< so that captions do not become towers
constexpr int kRowNameGap = 10;
constexpr std::uint8_t kGround = 46;

constexpr Colour kBright{236, 236, 236};
constexpr Colour kPlain{190, 190, 190};
constexpr Colour kAccent{240, 176, 84};

/// Heights and widths of everything on a sheet, and the drawing of it, from the top down.
class Layout {
public:
    explicit Layout(const ContactSheet& sheet);

    Picture draw();

private:
    struct Row {
        std::size_t first, end;      ///< of the tiles
        int pictures = 0, text = 0;  ///< heights
    };

    std::vector<std::string> captionOf(const Tile& tile) const
    {
        return small_.wrapped(tile.caption, column_);
    }
    std::vector<std::string> titleLines() const
    {
        return large_.wrapped(sheet_.title, std::max(width_ - 2 * kMargin, kLeastColumn));
    }
    std::vector<Row> rowsOf(const Group& group) const;
    int textHeight(const Tile& tile) const;
    int headHeight(const Group& group) const;
    int height() const;
    int columnX(std::size_t column) const
    {
        return kMargin + names_ + static_cast<int>(column) * (column_ + kGap);
    }
    void line(int x, const Lettering& letters, std::string_view text, Colour colour);
    void drawTitle();
    void drawGroup(const Group& group);
    void drawHead(const Group& group);
    void drawRow(const Group& group, const Row& row, std::size_t number);
    void drawText(const Tile& tile, int x);

    const ContactSheet& sheet_;
    Lettering small_, large_{2};
    int column_ = kLeastColumn;
    int names_ = 0;  ///< width of the rows' names with the gap
    int width_ = 0;
    Picture picture_;
    int top_ = 0;  ///< where the next thing goes, y upwards
};

Layout::Layout(const ContactSheet& sheet) : sheet_(sheet)
{
    std::size_t columns = 1;
    for (const Group& group : sheet.groups) {
        columns = std::max(columns, std::min(group.columns, group.tiles.size()));
        for (const Tile& tile : group.tiles) column_ = std::max(column_, tile.picture.width());
        for (const std::string& name : group.columnNames) {
            column_ = std::max(column_, large_.widthOf(name));
        }
        for (const std::string& name : group.rowNames) {
            names_ = std::max(names_, large_.widthOf(name) + kRowNameGap);
        }
    }
    width_ = columnX(columns) - kGap + kMargin;
}

std::vector<Layout::Row> Layout::rowsOf(const Group& group) const
{
    std::vector<Row> rows;
    for (std::size_t first = 0; first < group.tiles.size(); first += group.columns) {
        Row row{first, std::min(first + group.columns, group.tiles.size())};
        for (std::size_t i = row.first; i < row.end; ++i) {
            row.pictures = std::max(row.pictures, group.tiles[i].picture.height());
            row.text = std::max(row.text, textHeight(group.tiles[i]));
        }
        rows.push_back(row);
    }
    return rows;
}

int Layout::textHeight(const Tile& tile) const
{
    int height = tile.title.empty() && tile.caption.empty() ? 0 : kBelowPicture;
    if (!tile.title.empty()) height += large_.lineHeight();
    return height + static_cast<int>(captionOf(tile).size()) * small_.lineHeight();
}

int Layout::headHeight(const Group& group) const
{
    const int line = large_.lineHeight() + kBelowPicture;
    return (group.heading.empty() ? 0 : line) + (group.columnNames.empty() ? 0 : line);
}

int Layout::height() const
{
    int height = 2 * kMargin;
    const auto lines = static_cast<int>(titleLines().size());
    if (lines > 0) height += lines * large_.lineHeight() + kGap;
    for (std::size_t i = 0; i < sheet_.groups.size(); ++i) {
        if (i > 0) height += kBetweenGroups;
        height += headHeight(sheet_.groups[i]);
        for (const Row& row : rowsOf(sheet_.groups[i])) height += row.pictures + row.text + kGap;
    }
    return height;
}

Picture Layout::draw()
{
    picture_ = Picture({0, 0, width_, height()}, Depth::Byte);
    for (int y = 0; y < picture_.height(); ++y) {
        auto* pixel = picture_.pixel<std::uint8_t>(0, y);
        for (int x = 0; x < width_; ++x, pixel += 4) {
            std::fill_n(pixel, 3, kGround);
            pixel[3] = 255;
        }
    }
    top_ = picture_.height() - kMargin;
    drawTitle();
    for (std::size_t i = 0; i < sheet_.groups.size(); ++i) {
        if (i > 0) top_ -= kBetweenGroups;
        drawGroup(sheet_.groups[i]);
    }
    return std::move(picture_);
}

/// Writes a line and goes to the next.
void Layout::line(int x, const Lettering& letters, std::string_view text, Colour colour)
{
    letters.draw(picture_, x, top_, text, colour);
    top_ -= letters.lineHeight();
}

void Layout::drawTitle()
{
    const std::vector<std::string> lines = titleLines();
    for (const std::string& text : lines) line(kMargin, large_, text, kBright);
    if (!lines.empty()) top_ -= kGap;
}

void Layout::drawGroup(const Group& group)
{
    drawHead(group);
    const std::vector<Row> rows = rowsOf(group);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        drawRow(group, rows[i], i);
        top_ -= rows[i].pictures + rows[i].text + kGap;
    }
}

void Layout::drawHead(const Group& group)
{
    if (!group.heading.empty()) {
        line(kMargin, large_, group.heading, kAccent);
        top_ -= kBelowPicture;
    }
    if (group.columnNames.empty()) return;
    for (std::size_t i = 0; i < group.columnNames.size(); ++i) {
        large_.draw(picture_, columnX(i), top_, group.columnNames[i], kAccent);
    }
    top_ -= large_.lineHeight() + kBelowPicture;
}

void Layout::drawRow(const Group& group, const Row& row, std::size_t number)
{
    if (number < group.rowNames.size()) {
        const int middle = top_ - (row.pictures - large_.lineHeight()) / 2;
        large_.draw(picture_, kMargin, middle, group.rowNames[number], kAccent);
    }
    const int top = top_;
    for (std::size_t i = row.first; i < row.end; ++i) {
        const Tile& tile = group.tiles[i];
        const int x = columnX(i - row.first);
        Picture placed = tile.picture.copied();
        placed.move(x - placed.bounds().x1, top - placed.bounds().y2);
        picture_.paste(placed);
        top_ = top - row.pictures;
        drawText(tile, x);
        top_ = top;
    }
}

void Layout::drawText(const Tile& tile, int x)
{
    if (tile.title.empty() && tile.caption.empty()) return;
    top_ -= kBelowPicture;
    if (!tile.title.empty()) line(x, large_, tile.title, kAccent);
    for (const std::string& text : captionOf(tile)) line(x, small_, text, kPlain);
}

}  // namespace

Picture drawn(const ContactSheet& sheet)
{
    return Layout(sheet).draw();
}

std::size_t columnsFor(std::size_t count, int tileWidth, int tileHeight)
{
    constexpr double kShape = 1.6;
    constexpr int kText = 60;
    const double cell = double(tileHeight + kText) / std::max(tileWidth, kLeastColumn);
    const double ideal = std::sqrt(kShape * double(count) * cell);
    const auto empty = [&](std::size_t columns) {
        return double((columns - count % columns) % columns) / double(columns);
    };
    std::size_t best = 1;
    double least = 0.0;
    for (std::size_t columns = 1; columns <= count; ++columns) {
        // An empty half row is as bad as a sheet that is a sixth too wide or too high.
        const double wrong = std::abs(std::log(double(columns) / ideal)) + empty(columns) / 3.0;
        if (columns > 1 && wrong >= least) continue;
        best = columns;
        least = wrong;
    }
    return best;
}

}  // namespace Tesseret::Sheet
