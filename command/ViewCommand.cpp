#include "command/ViewCommand.h"

#include <cstdio>
#include <filesystem>
#include <memory>

#include "command/RenderOptions.h"
#include "files/FileThreads.h"
#include "render/JobError.h"
#include "viewer/window/Viewer.h"

namespace Tesseret::Command {

namespace {

constexpr const char* kFooter =
    R"(Files and parameters are the same as for "tesseret render". The wheel zooms, the
middle button pans, F fits the picture; the box in the picture can be dragged.

Examples:
  tesseret view --source plate.png
  tesseret view --source plate.png --matte hole.png --output out.png blockSize=64)";

struct ViewOptions {
    RenderOptions render;
    std::string size = "1280x800";
};

Viewer::WindowSize sizeFrom(const std::string& text)
{
    Viewer::WindowSize size{};
    char end = 0;
    const int count = std::sscanf(text.c_str(), "%dx%d%c", &size.width, &size.height, &end);
    const bool isFit = count == 2 && size.width >= 640 && size.height >= 400 &&
                       size.width <= 16384 && size.height <= 16384;
    if (!isFit) {
        throw Render::UsageError("--size " + text + ": expected WxH, 640x400 to 16384x16384");
    }
    return size;
}

int view(const ViewOptions& options)
{
    const Viewer::WindowSize size = sizeFrom(options.size);
    Render::RenderSettings settings = settingsFrom(options.render);
    // The box is on screen, and dragging it changes the fill at once.
    settings.keepsClear = false;
    Files::useThreads(settings.threads);
    Viewer::Viewer viewer(std::make_unique<Viewer::ViewSession>(settings),
                          {settings.output, settings.parameterFile}, size);
    viewer.run();
    return 0;
}

}  // namespace

void addViewCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<ViewOptions>();
    CLI::App* const command =
        app.add_subcommand("view", "Shows a picture, its fill and the parameters in a window");
    command->footer(kFooter);
    addFileOptions(*command, options->render, /*wantsOutput=*/false);
    addMatteOptions(*command, options->render);
    addPluginOptions(*command, options->render);
    command->add_option("--size", options->size, "Size of the window (default: 1280x800)")
        ->type_name("WxH");
    command->callback([options, &action] { action = [options] { return view(*options); }; });
}

}  // namespace Tesseret::Command
