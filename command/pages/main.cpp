/// Writes the manual page and the shells' completions of `tesseret` into a folder, for the
/// installation. Usage: tesseret_pages FOLDER

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include <CLI/CLI.hpp>

#include "command/App.h"
#include "command/pages/Pages.h"

namespace {

bool write(const std::filesystem::path& file, const std::string& text)
{
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) std::fprintf(stderr, "tesseret_pages: %s cannot be written\n", file.c_str());
    return bool(stream);
}

bool writePages(const std::filesystem::path& folder)
{
    using namespace Tesseret::Command;
    CLI::App app;
    Action action;
    buildApp(app, action);
    const CommandModel program = modelOf(app);
    return write(folder / "tesseret.1", manualPage(program, TESSERET_VERSION)) &&
           write(folder / "tesseret.bash", bashCompletion(program)) &&
           write(folder / "_tesseret", zshCompletion(program)) &&
           write(folder / "tesseret.fish", fishCompletion(program));
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: tesseret_pages FOLDER\n");
        return 2;
    }
    try {
        return writePages(argv[1]) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tesseret_pages: %s\n", error.what());
        return 1;
    }
}
