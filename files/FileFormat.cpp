#include "files/FileFormat.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "files/FileError.h"
#include "files/StandardStreams.h"

namespace Tesseret::Files {

namespace {

std::string knownExtensions()
{
    std::string known;
    for (const FileFormat& format : fileFormats()) {
        for (const std::string_view extension : format.extensions) {
            known.append(known.empty() ? "" : " ").append(extension);
        }
    }
    return known;
}

/// "PNG, JPEG or TIFF"
std::string knownLabels()
{
    std::string known;
    const std::span<const FileFormat> formats = fileFormats();
    for (const FileFormat& format : formats) {
        if (!known.empty()) known += &format == &formats.back() ? " or " : ", ";
        known += format.label;
    }
    return known;
}

std::string firstBytes(const std::filesystem::path& file, const std::filesystem::path& stored)
{
    errno = 0;
    std::ifstream stream(stored, std::ios::binary);
    if (!stream) throw FileError(file, std::string("cannot be read: ") + std::strerror(errno));
    std::array<char, 8> start{};
    stream.read(start.data(), start.size());
    return {start.data(), static_cast<std::size_t>(stream.gcount())};
}

}  // namespace

bool isPng(const FileFormat& format)
{
    return format.name == "png";
}

const FileFormat& formatByName(const std::filesystem::path& file)
{
    const std::string stream(formatOfStandardOutput(file.string()));
    std::string extension = stream.empty() ? file.extension().string() : "." + stream;
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const FileFormat& format : fileFormats()) {
        if (std::ranges::find(format.extensions, extension) != format.extensions.end()) {
            return format;
        }
    }
    throw FileError(
        file, (extension.empty() ? "the name has no extension" : "unknown extension " + extension) +
                  "; supported are " + knownExtensions());
}

const FileFormat& formatByContent(const std::filesystem::path& file)
{
    std::error_code ignored;
    const std::filesystem::path stored = storedFile(file);
    if (!std::filesystem::exists(stored, ignored)) throw FileError(file, "no such file");
    if (std::filesystem::is_directory(file, ignored)) throw FileError(file, "is a folder");
    const std::string bytes = firstBytes(file, stored);
    if (bytes.empty()) throw FileError(file, "is empty");
    const auto begins = [&](std::string_view signature) { return bytes.starts_with(signature); };
    for (const FileFormat& format : fileFormats()) {
        if (std::ranges::any_of(format.signatures, begins)) return format;
    }
    throw FileError(file, "is not a " + knownLabels() + " picture");
}

Compression parseCompression(const FileFormat& format, const std::string& text)
{
    std::optional<Compression> understood;
    if (format.compressionFrom != nullptr) understood = format.compressionFrom(text);
    if (understood) return *understood;
    throw std::invalid_argument("compression \"" + text + "\": " + std::string(format.label) +
                                " takes " + std::string(format.compressions));
}

}  // namespace Tesseret::Files
