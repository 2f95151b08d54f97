#include "render/FillRegion.h"

#include <string>
#include <string_view>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "render/JobError.h"

namespace Tesseret::Render {

using Host::ContextDescription;

namespace {

/// An option and the choice it stands for.
struct Request {
    const char* option;
    std::string_view choice;
};

std::optional<Request> requestOf(const RenderSettings& settings)
{
    switch (settings.mask) {
        case MaskOption::MatteInverted:
            return Request{"--matte-inverted", Names::kMatteInvertedAlpha};
        case MaskOption::Alpha:
            return Request{"--fill-alpha", Names::kSourceAlpha};
        case MaskOption::AlphaInverted:
            return Request{"--fill-alpha-inverted", Names::kSourceInvertedAlpha};
        case MaskOption::None:
            break;
    }
    if (!settings.matte.empty()) return Request{"--matte", Names::kMatteAlpha};
    return std::nullopt;
}

std::string choiceOf(const ContextDescription& description, const ParameterValues& values)
{
    const Host::ParameterDescription* const parameter = description.parameter(Names::kFillRegion);
    if (parameter == nullptr || parameter->options.empty()) return "";
    return valueText(*parameter, valueOf(Names::kFillRegion, values, description));
}

void set(std::string_view choice, const ContextDescription& description, ParameterValues& values)
{
    values[Names::kFillRegion] =
        parseAssignment(std::string(Names::kFillRegion).append("=").append(choice), description)
            .value;
}

void checkAlpha(const Request& request, const JobInputs& inputs)
{
    const bool wantsAlpha =
        request.choice == Names::kSourceAlpha || request.choice == Names::kSourceInvertedAlpha;
    if (!wantsAlpha || inputs.source().hasAlpha) return;
    throw UsageError(Files::shownName(inputs.source().file) + ": has no alpha, which " +
                     request.option + " needs as its mask");
}

/// The choice has to be the requested one; --matte alone allows the inverted matte too.
bool agrees(const Request& request, const RenderSettings& settings, const std::string& choice)
{
    return choice == request.choice ||
           (settings.mask == MaskOption::None && choice == Names::kMatteInvertedAlpha);
}

}  // namespace

bool allowsFillRegion(const RenderSettings& settings, const ContextDescription& description,
                      const ParameterValues& values)
{
    const std::optional<Request> request = requestOf(settings);
    return !request || agrees(*request, settings, choiceOf(description, values));
}

void setFillRegion(const RenderSettings& settings, const ContextDescription& description,
                   const JobInputs& inputs, ParameterValues& values)
{
    const std::optional<Request> request = requestOf(settings);
    const bool isGiven = values.contains(Names::kFillRegion);
    if (!request) {
        // Set so that the values show it: without a matte the default fills the whole picture too.
        const bool hasMatte = description.clip(Names::kMatte) != nullptr;
        const bool hasChoice = description.parameter(Names::kFillRegion) != nullptr;
        if (hasMatte && hasChoice && !isGiven) set(Names::kEntireImage, description, values);
        return;
    }
    checkAlpha(*request, inputs);
    if (isGiven) {
        const std::string given = choiceOf(description, values);
        if (agrees(*request, settings, given)) return;
        throw UsageError(std::string(request->option) + " and fillRegion=\"" + given +
                         "\" contradict each other; give only one of them");
    }
    // Another plug-in may use a matte in its own way.
    const bool isImplied = settings.mask == MaskOption::None;
    if (isImplied && description.parameter(Names::kFillRegion) == nullptr) return;
    set(request->choice, description, values);
}

FillRegion fillRegionOf(const ContextDescription& description, const JobInputs& inputs,
                        const ParameterValues& values)
{
    const std::string choice = choiceOf(description, values);
    if (choice == Names::kSourceAlpha) return {MaskSource::Alpha, Polarity::White};
    if (choice == Names::kSourceInvertedAlpha) return {MaskSource::Alpha, Polarity::Black};
    if (!inputs.has(Names::kMatte)) return {};
    if (choice == Names::kMatteAlpha) return {MaskSource::Matte, Polarity::White};
    if (choice == Names::kMatteInvertedAlpha) return {MaskSource::Matte, Polarity::Black};
    return {};
}

}  // namespace Tesseret::Render
