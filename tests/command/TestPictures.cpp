#include "tests/command/TestPictures.h"

#include <cmath>
#include <stdexcept>

#include <OpenImageIO/imageio.h>

namespace Tesseret::Command {

void paint(const std::filesystem::path& file, int width, int height, const Painter& painter)
{
    std::vector<unsigned char> samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (const int value : painter(x, y)) {
                samples.push_back(static_cast<unsigned char>(value));
            }
        }
    }
    const int channels = static_cast<int>(painter(0, 0).size());
    const auto output = OIIO::ImageOutput::create(file.string());
    OIIO::ImageSpec spec(width, height, channels, OIIO::TypeUInt8);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    if (!output || !output->open(file.string(), spec) ||
        !output->write_image(OIIO::TypeUInt8, samples.data()) || !output->close()) {
        throw std::runtime_error("cannot paint " + file.string());
    }
}

Painter noise(int seed)
{
    return [seed](int x, int y) {
        const auto column = static_cast<unsigned int>(x);
        const auto row = static_cast<unsigned int>(y);
        const unsigned int hash =
            column * 73856093u ^ row * 19349663u ^ static_cast<unsigned int>(seed) * 83492791u;
        const unsigned int mixed = (hash ^ hash >> 13) * 1274126177u;
        return std::vector<int>{static_cast<int>(mixed >> 24), static_cast<int>(mixed >> 16 & 255),
                                static_cast<int>(mixed >> 8 & 255)};
    };
}

int LoadedPicture::at(int column, int row, int channel) const
{
    const int index = (row * width + column) * channels + channel;
    return static_cast<int>(std::lround(samples[static_cast<std::size_t>(index)] * 255.0f));
}

LoadedPicture load(const std::filesystem::path& file)
{
    OIIO::ImageSpec asStored;
    asStored.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file.string(), &asStored);
    if (!input) throw std::runtime_error("cannot load " + file.string());
    const OIIO::ImageSpec& spec = input->spec();
    LoadedPicture picture{spec.width, spec.height, spec.nchannels, spec.x, spec.y, {}};
    picture.samples.resize(spec.image_pixels() * static_cast<std::size_t>(spec.nchannels));
    if (!input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeFloat, picture.samples.data())) {
        throw std::runtime_error("cannot load " + file.string());
    }
    return picture;
}

}  // namespace Tesseret::Command
