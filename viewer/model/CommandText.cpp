#include "viewer/model/CommandText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "files/Sequence.h"
#include "files/StandardStreams.h"
#include "render/DepthWord.h"
#include "render/ParameterText.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;
using Render::InstanceSetup;
using Render::JobInputs;
using Render::MaskSource;
using Render::ParameterValues;
using Render::RenderSettings;

namespace fs = std::filesystem;

namespace {

/// Quoted as one word for a POSIX shell.
std::string quoted(const std::string& word)
{
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_@%+=:,./-";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string text = "'";
    for (const char letter : word) {
        if (letter == '\'') {
            text += R"('\'')";
        } else {
            text += letter;
        }
    }
    return text + "'";
}

/// Enough digits to be read as the same number again.
std::string exactText(double number)
{
    std::array<char, 512> text{};  // the largest has 309 digits
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed)
                .ptr};
}

/// The value as text that `parseAssignment` reads as exactly this value.
std::string exactText(const ParameterDescription& parameter, const ParameterValue& value)
{
    if (const auto* const number = std::get_if<double>(&value)) return exactText(*number);
    const auto* const numbers = std::get_if<std::vector<double>>(&value);
    if (numbers == nullptr) return Render::valueText(parameter, value);
    std::string text;
    for (const double number : *numbers) Render::appendItem(text, ",", exactText(number));
    return text;
}

std::string framesText(const std::vector<int>& frames)
{
    if (std::ranges::is_sorted(frames)) return Files::framesText(frames);
    std::string text;
    for (const int frame : frames) Render::appendItem(text, ",", std::to_string(frame));
    return text;
}

std::string boxText(const Render::ViewBox& box)
{
    std::string text;
    for (const double edge : {box.x1, box.y1, box.x2, box.y2}) {
        Render::appendItem(text, ",", exactText(edge));
    }
    return text;
}

std::string areasText(const std::vector<std::size_t>& areas)
{
    std::string text;
    for (const std::size_t area : areas) Render::appendItem(text, ",", std::to_string(area + 1));
    return text;
}

/// Beside the source, with its extension and frame pattern.
fs::path outputFor(const RenderSettings& settings)
{
    if (!settings.output.empty()) return settings.output;
    const fs::path& source = settings.source;
    const bool isSequence = Files::SequencePattern(source).isSequence();
    const std::string mark = settings.frames.size() > 1 && !isSequence ? ".####" : "";
    return source.parent_path() /
           ("filled-" + source.stem().string() + mark + source.extension().string());
}

/// The settings without the parts that set parameter values. A matte that the fill does not use is
/// left out, since the option alone would select it.
RenderSettings plainSettings(const RenderSettings& settings, const Render::FillRegion& region)
{
    RenderSettings plain = settings;
    plain.output = outputFor(settings);
    plain.sampleBox.reset();
    plain.parameterFile.clear();
    plain.parameters.clear();
    plain.mask = Render::MaskOption::None;
    plain.keepsClear = true;  // as the command does by itself
    if (region.source != MaskSource::Matte) {
        plain.matte.clear();
        plain.paintsMatte = false;
    }
    return plain;
}

/// The assignments of a command, and the settings for its other options.
struct CommandArguments {
    RenderSettings settings;
    std::vector<std::string> assignments;  ///< "name=value"
};

/// Whether values of one context can be given in another.
bool fit(const ParameterValues& values, const Host::ContextDescription& from,
         const Host::ContextDescription& to)
{
    return std::ranges::all_of(values, [&](const auto& value) {
        const ParameterDescription* const parameter = to.parameter(value.first);
        if (parameter == nullptr) return value.second == from.parameter(value.first)->initial;
        const auto* const choice = std::get_if<int>(&value.second);
        return parameter->options.empty() || choice == nullptr ||
               *choice < static_cast<int>(parameter->options.size());
    });
}

/// The fewest assignments that lead to the values. The command's own defaults may depend on an
/// assignment, so this repeats until nothing differs.
CommandArguments minimalArguments(RenderSettings settings, const InstanceSetup& wanted,
                                  Render::PluginSession& session)
{
    const JobInputs inputs(settings);
    const Depth depth = settings.depth.value_or(inputs.source().depth);
    const ParameterValues values = wanted.values();
    const std::string context = InstanceSetup(session, settings, inputs, depth).context();
    const bool fits = fit(values, session.describe(wanted.context()), session.describe(context));
    if (!fits) settings.context = wanted.context();
    const Host::ContextDescription& description =
        session.describe(fits ? context : wanted.context());
    std::set<std::string> added;
    for (bool isComplete = false; !isComplete;) {
        const ParameterValues reached = InstanceSetup(session, settings, inputs, depth).values();
        isComplete = true;
        for (const auto& [name, value] : values) {
            const auto there = reached.find(name);
            if (there == reached.end() || value == there->second) continue;
            if (!added.insert(name).second) continue;
            settings.parameters.push_back(assignmentText(*description.parameter(name), value));
            isComplete = false;
        }
    }
    std::vector<std::string> assignments = std::exchange(settings.parameters, {});
    return {std::move(settings), std::move(assignments)};
}

/// Builds a command line.
class CommandLine {
public:
    void word(const std::string& word) { Render::appendItem(text_, " ", quoted(word)); }
    void option(const char* name, const std::string& value)
    {
        word(name);
        word(value);
    }
    /// Paths are absolute, so that the command works in any folder.
    void file(const char* name, const fs::path& file)
    {
        if (file.empty()) return;
        option(name, Files::isStandardOutput(file) ? file.string() : fs::absolute(file).string());
    }
    void addFiles(const RenderSettings& settings);
    void addMatte(const RenderSettings& settings);
    void addRender(const RenderSettings& settings);
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

void CommandLine::addFiles(const RenderSettings& settings)
{
    file("--source", settings.source);
    file("--texture1", settings.textures[0]);
    file("--texture2", settings.textures[1]);
    file("--texture3", settings.textures[2]);
    for (std::size_t i = 0; i < settings.textureCrops.size(); ++i) {
        const auto& crop = settings.textureCrops[i];
        const std::string name = "--texture" + std::to_string(i + 1) + "-crop";
        if (crop) option(name.c_str(), boxText(*crop));
    }
    if (!settings.frames.empty()) option("--frames", framesText(settings.frames));
    file("--output", settings.output);
    if (!settings.compression.empty()) option("--compression", settings.compression);
}

void CommandLine::addMatte(const RenderSettings& settings)
{
    if (settings.matte.empty()) return;
    file("--matte", settings.matte);
    if (!settings.everyArea) option("--areas", "first");
    if (!settings.areas.empty()) option("--areas", areasText(settings.areas));
    if (const auto& side = settings.matteSide) {
        option("--matte-side",
               exactText(side->x) + "," + exactText(side->y) + "," + exactText(side->angle));
    }
    if (!settings.cropsAreas) option("--matte-window", "full");
    if (settings.followsMatte) word("--follow");
    if (settings.matteGrow > 0.0) option("--matte-grow", exactText(settings.matteGrow));
}

void CommandLine::addRender(const RenderSettings& settings)
{
    if (settings.window) option("--window", boxText(*settings.window));
    if (settings.renderScale != 1.0) option("--render-scale", exactText(settings.renderScale));
    if (settings.depth) option("--depth", Render::depthWord(*settings.depth));
    if (!settings.context.empty()) option("--context", settings.context);
    if (settings.threads > 0) option("--threads", std::to_string(settings.threads));
    file("--plugin", settings.plugin);
}

/// With all options but those that set parameters.
CommandLine lineOf(const RenderSettings& settings)
{
    CommandLine line;
    line.word("tesseret");
    line.word("render");
    line.addFiles(settings);
    line.addMatte(settings);
    line.addRender(settings);
    return line;
}

}  // namespace

std::string assignmentText(const ParameterDescription& parameter, const ParameterValue& value)
{
    return parameter.name + "=" + exactText(parameter, value);
}

std::string commandWithFile(const RenderSettings& settings)
{
    RenderSettings named = settings;
    named.output = outputFor(settings);
    CommandLine line = lineOf(named);
    const fs::path& file = settings.parameterFile;
    const bool isText = file.string().starts_with('{');
    line.option("--parameters", isText ? file.string() : fs::absolute(file).string());
    for (const std::string& assignment : settings.parameters) line.word(assignment);
    return line.text();
}

std::string commandText(const RenderSettings& settings, const InstanceSetup& setup,
                        Render::PluginSession& session)
{
    const CommandArguments arguments =
        minimalArguments(plainSettings(settings, setup.fillRegion()), setup, session);
    CommandLine line = lineOf(arguments.settings);
    for (const std::string& assignment : arguments.assignments) line.word(assignment);
    return line.text();
}

}  // namespace Tesseret::Viewer
