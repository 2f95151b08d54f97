#include "command/FileWords.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "command/ParseMessage.h"
#include "files/StandardStreams.h"
#include "render/JobError.h"

namespace Tesseret::Command {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kNameMark = "{name}";

std::string inQuotes(const std::string& word)
{
    return "\"" + word + "\"";
}

bool hasNameMark(const fs::path& file)
{
    return file.string().find(kNameMark) != std::string::npos;
}

bool isFolder(const fs::path& file)
{
    std::error_code ignored;
    return file.string().ends_with('/') || fs::is_directory(file, ignored);
}

/// A parameter's name before an equals sign.
bool isAssignment(const std::string& word)
{
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0) return false;
    const auto isNameLetter = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
    return std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(equals),
                       isNameLetter) &&
           std::isdigit(static_cast<unsigned char>(word.front())) == 0;
}

/// Whether a word can be a file's name: a picture has an extension.
bool isFileName(const fs::path& word)
{
    std::error_code ignored;
    return word.has_extension() || hasNameMark(word) || isFolder(word) ||
           Files::isStandardOutput(word) || fs::exists(word, ignored);
}

/// Removes the words that are files from the parameters.
std::vector<fs::path> filesAmong(std::vector<std::string>& words)
{
    std::vector<fs::path> files;
    std::vector<std::string> assignments;
    for (std::string& word : words) {
        if (!isAssignment(word)) {
            if (!isFileName(word)) {
                throw Render::UsageError(inQuotes(word) +
                                         " is neither an option nor name=value nor a file");
            }
            files.emplace_back(word);
            continue;
        }
        std::error_code ignored;
        if (fs::exists(word, ignored)) {
            throw Render::UsageError(inQuotes(word) +
                                     " is name=value and the name of a file; give the file as " +
                                     inQuotes("./" + word));
        }
        assignments.push_back(std::move(word));
    }
    words = std::move(assignments);
    return files;
}

/// The options that words can still stand for, in their order.
std::vector<fs::path*> openFiles(RenderOptions& options)
{
    Render::RenderSettings& settings = options.settings;
    std::vector<fs::path*> open{&settings.source};
    if (options.files != FilesWanted::Render) open.push_back(&settings.matte);
    if (options.files != FilesWanted::Wedge) open.push_back(&settings.output);
    std::erase_if(open, [](const fs::path* file) { return !file->empty(); });
    return open;
}

bool takesOutput(const RenderOptions& options, const std::vector<fs::path>& words)
{
    return options.settings.output.empty() && (words.size() > 1 || isFolder(words.back()));
}

/// Several sources, where every other file is given.
std::vector<fs::path> takeSources(RenderOptions& options, std::vector<fs::path> words)
{
    if (takesOutput(options, words)) {
        options.settings.output = words.back();
        words.pop_back();
    }
    const fs::path& output = options.settings.output;
    if (words.size() > 1 && !output.empty() && !hasNameMark(output) && !isFolder(output)) {
        const std::string hint = options.settings.matte.empty() ? ", and a matte with --matte" : "";
        throw Render::UsageError(output.string() +
                                 ": several sources need a folder, as in --output clean/, or "
                                 "--output \"clean/{name}.png\"" +
                                 hint);
    }
    return words;
}

void checkFiles(const RenderOptions& options, const std::vector<fs::path>& sources)
{
    const Render::RenderSettings& settings = options.settings;
    const bool fills = options.files == FilesWanted::Fill;
    const bool isWedge = options.files == FilesWanted::Wedge;
    const auto require = [&](bool isThere, const char* option) {
        if (isThere) return;
        throw Render::UsageError(std::string(option) + " is missing: " +
                                 exampleOf(fills     ? "fill"
                                           : isWedge ? "wedge"
                                                     : "render"));
    };
    if (options.files == FilesWanted::View) return;
    require(!sources.empty(), "--source");
    if (fills) require(!settings.matte.empty(), "--matte");
    if (options.needsOutput && !isWedge) require(!settings.output.empty(), "--output");
}

std::string replaced(std::string text, const std::string& name)
{
    for (std::size_t at = text.find(kNameMark); at != std::string::npos;
         at = text.find(kNameMark, at + name.size())) {
        text.replace(at, kNameMark.size(), name);
    }
    return text;
}

}  // namespace

std::vector<fs::path> takeFileWords(RenderOptions& options)
{
    std::vector<fs::path> words = filesAmong(options.settings.parameters);
    const std::vector<fs::path*> open = openFiles(options);
    const bool wantsSource = options.settings.source.empty();
    const bool matteIsKnown =
        options.files == FilesWanted::Render || !options.settings.matte.empty();
    std::vector<fs::path> sources;
    const bool takesMany =
        options.files == FilesWanted::Render || options.files == FilesWanted::Fill;
    if (!words.empty() && wantsSource && matteIsKnown && takesMany) {
        sources = takeSources(options, std::move(words));
    } else {
        if (words.size() > open.size()) {
            throw Render::UsageError(inQuotes(words[open.size()].string()) + ": " +
                                     (open.empty() ? "all files are given by options already"
                                                   : "no more files are expected"));
        }
        for (std::size_t i = 0; i < words.size(); ++i) *open[i] = words[i];
        if (!options.settings.source.empty()) sources = {options.settings.source};
    }
    checkFiles(options, sources);
    return sources;
}

fs::path named(const fs::path& file, const fs::path& source)
{
    return replaced(file.string(), source.stem().string());
}

RenderOptions optionsFor(const RenderOptions& options, const fs::path& source)
{
    RenderOptions single = options;
    Render::RenderSettings& settings = single.settings;
    settings.source = source;
    settings.matte = named(settings.matte, source);
    if (settings.output.empty()) return single;
    settings.output = isFolder(settings.output) ? settings.output / source.filename()
                                                : named(settings.output, source);
    return single;
}

}  // namespace Tesseret::Command
