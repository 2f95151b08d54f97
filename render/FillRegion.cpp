#include "render/FillRegion.h"

#include <string>
#include <string_view>

#include "render/JobError.h"

namespace Tesseret::Render {

using Host::ContextDescription;

namespace {

constexpr const char* kFillRegion = "fillRegion";
constexpr std::string_view kEntireImage = "Entire Image";
constexpr std::string_view kSourceAlpha = "Source->Alpha";
constexpr std::string_view kSourceInverted = "Source->Inverted Alpha";
constexpr std::string_view kMatteAlpha = "Matte->Alpha";
constexpr std::string_view kMatteInverted = "Matte->Inverted Alpha";

/// An option and the choice it stands for.
struct Wish {
    const char* option;
    std::string_view choice;
};

std::optional<Wish> wishOf(const RenderSettings& settings)
{
    switch (settings.mask) {
        case MaskOption::MatteInverted:
            return Wish{"--matte-inverted", kMatteInverted};
        case MaskOption::Alpha:
            return Wish{"--fill-alpha", kSourceAlpha};
        case MaskOption::AlphaInverted:
            return Wish{"--fill-alpha-inverted", kSourceInverted};
        case MaskOption::None:
            break;
    }
    if (!settings.matte.empty()) return Wish{"--matte", kMatteAlpha};
    return std::nullopt;
}

std::string choiceOf(const ContextDescription& description, const ParameterValues& values)
{
    const Host::ParameterDescription* const parameter = description.parameter(kFillRegion);
    if (parameter == nullptr || parameter->options.empty()) return "";
    return valueText(*parameter, valueOf(kFillRegion, values, description));
}

void set(std::string_view choice, const ContextDescription& description, ParameterValues& values)
{
    values[kFillRegion] =
        parseAssignment(std::string(kFillRegion).append("=").append(choice), description).value;
}

void checkAlpha(const Wish& wish, const JobInputs& inputs)
{
    const bool wantsAlpha = wish.choice == kSourceAlpha || wish.choice == kSourceInverted;
    if (!wantsAlpha || inputs.source().hasAlpha) return;
    throw UsageError(inputs.source().file.string() + ": has no alpha, which " + wish.option +
                     " takes the mask from");
}

/// A choice may be the one wished for, or the inverse of a matte that was given without a word.
bool agrees(const Wish& wish, const RenderSettings& settings, const std::string& choice)
{
    return choice == wish.choice || (settings.mask == MaskOption::None && choice == kMatteInverted);
}

}  // namespace

bool allowsFillRegion(const RenderSettings& settings, const ContextDescription& description,
                      const ParameterValues& values)
{
    const std::optional<Wish> wish = wishOf(settings);
    return !wish || agrees(*wish, settings, choiceOf(description, values));
}

void setFillRegion(const RenderSettings& settings, const ContextDescription& description,
                   const JobInputs& inputs, ParameterValues& values)
{
    const std::optional<Wish> wish = wishOf(settings);
    const bool isGiven = values.contains(kFillRegion);
    if (!wish) {
        // Without its matte the plug-in's own default would fill everything all the same.
        const bool hasMatte = description.clip("Matte") != nullptr;
        const bool hasChoice = description.parameter(kFillRegion) != nullptr;
        if (hasMatte && hasChoice && !isGiven) set(kEntireImage, description, values);
        return;
    }
    checkAlpha(*wish, inputs);
    if (isGiven) {
        const std::string given = choiceOf(description, values);
        if (agrees(*wish, settings, given)) return;
        throw UsageError(std::string(wish->option) + " and fillRegion=\"" + given +
                         "\" contradict each other; give one of them");
    }
    // Another plug-in may make of a matte what it likes.
    const bool isImplied = settings.mask == MaskOption::None;
    if (isImplied && description.parameter(kFillRegion) == nullptr) return;
    set(wish->choice, description, values);
}

FillRegion fillRegionOf(const ContextDescription& description, const JobInputs& inputs,
                        const ParameterValues& values)
{
    const std::string choice = choiceOf(description, values);
    if (choice == kSourceAlpha) return {MaskSource::Alpha, Polarity::White};
    if (choice == kSourceInverted) return {MaskSource::Alpha, Polarity::Black};
    if (!inputs.has("Matte")) return {};
    if (choice == kMatteAlpha) return {MaskSource::Matte, Polarity::White};
    if (choice == kMatteInverted) return {MaskSource::Matte, Polarity::Black};
    return {};
}

}  // namespace Tesseret::Render
