// Draws the characters 32 to 127 of an outline font and writes them as the C++ source of the
// overlay's font. Runs while the plug-in is built. Usage: font_maker FONT HEIGHT OUTPUT

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace {

constexpr unsigned int kFirst = 32, kLast = 127;

[[noreturn]] void fail(const std::string& text)
{
    std::cerr << "font_maker: " << text << '\n';
    std::exit(1);
}

/// A face whose characters reach `height` pixels from the lowest descent to the highest ascent.
FT_Face openFace(FT_Library library, const char* file, long height)
{
    FT_Face face = nullptr;
    if (FT_New_Face(library, file, 0, &face) != 0) fail(std::string(file) + ": no font");
    FT_Size_RequestRec request{};
    request.type = FT_SIZE_REQUEST_TYPE_REAL_DIM;
    request.height = height * 64;
    if (FT_Request_Size(face, &request) != 0) fail(std::string(file) + ": cannot be scaled");
    return face;
}

/// Writes one glyph's row of the table and appends its bits, lowest row first.
void writeGlyph(const FT_GlyphSlotRec& glyph, std::vector<unsigned int>& bits, std::ostream& out)
{
    const FT_Bitmap& bitmap = glyph.bitmap;
    const auto rows = static_cast<int>(bitmap.rows);
    out << "    {" << bitmap.width << ", " << rows << ", " << glyph.bitmap_left << ", "
        << glyph.bitmap_top - rows << ", " << glyph.advance.x / 64 << ", " << bits.size() << "},\n";
    const unsigned int rowBytes = (bitmap.width + 7) / 8;
    for (int row = rows - 1; row >= 0; --row) {
        const unsigned char* bytes = bitmap.buffer + row * bitmap.pitch;
        bits.insert(bits.end(), bytes, bytes + rowBytes);
    }
}

void writeBits(const std::vector<unsigned int>& bits, std::ostream& out)
{
    out << "const std::uint8_t kFontBits[] = {";
    for (std::size_t i = 0; i < bits.size(); ++i)
        out << (i % 20 == 0 ? "\n    " : " ") << bits[i] << ',';
    out << "\n};\n";
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 4) fail("FONT HEIGHT OUTPUT are wanted");
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) fail("FreeType does not start");
    FT_Face face = openFace(library, arguments[1], std::strtol(arguments[2], nullptr, 10));

    std::ofstream out(arguments[3]);
    out << "#include \"platform/OverlayFontData.h\"\n\nnamespace Orvane {\n\n"
           "const std::array<FontGlyph, kFontListCount> kFontGlyphs = {{\n";
    std::vector<unsigned int> bits;
    for (unsigned int code = kFirst; code <= kLast; ++code) {
        const FT_Int32 flags = FT_LOAD_RENDER | FT_LOAD_TARGET_MONO;
        if (FT_Load_Char(face, code, flags) != 0) fail("no character " + std::to_string(code));
        writeGlyph(*face->glyph, bits, out);
    }
    out << "}};\n\n";
    writeBits(bits, out);
    out << "\n}  // namespace Orvane\n";
    out.close();
    if (!out) fail(std::string(arguments[3]) + ": cannot be written");
    FT_Done_FreeType(library);
    return 0;
}
