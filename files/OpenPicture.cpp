#include "files/OpenPicture.h"

#include "files/FileError.h"

namespace Tesseret::Files {

void checkSize(const std::filesystem::path& file, int width, int height)
{
    constexpr int kMaxPixelsAcross = 1 << 17;
    if (width <= kMaxPixelsAcross && height <= kMaxPixelsAcross) return;
    throw FileError(file, "is too large: " + std::to_string(width) + " x " +
                              std::to_string(height) + " pixels");
}

void failDamaged(const std::filesystem::path& file)
{
    throw FileError(file, "is damaged or truncated");
}

}  // namespace Tesseret::Files
