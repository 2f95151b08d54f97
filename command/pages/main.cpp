/// Writes the manual page and the shells' completions of `tesseret` into a folder, for the
/// installation. Usage: tesseret_pages FOLDER

#include <cstdio>
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

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: tesseret_pages FOLDER\n");
        return 2;
    }
    using namespace Tesseret::Command;
    CLI::App app;
    Action action;
    buildApp(app, action);
    const CommandModel program = modelOf(app);
    const std::filesystem::path folder(argv[1]);
    const bool isDone = write(folder / "tesseret.1", manualPage(program, TESSERET_VERSION)) &&
                        write(folder / "tesseret.bash", bashCompletion(program)) &&
                        write(folder / "_tesseret", zshCompletion(program)) &&
                        write(folder / "tesseret.fish", fishCompletion(program));
    return isDone ? 0 : 1;
}
