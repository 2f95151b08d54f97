#include "viewer/model/PanelPages.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Tesseret::Viewer {

using Host::ContextDescription;
using Host::ParameterDescription;

namespace {

constexpr const char* kOnlyPage = "Parameters";
constexpr const char* kLastPage = "Other";

bool isShown(const ParameterDescription& parameter)
{
    return !parameter.isPage() && !parameter.isGroup() && !parameter.secret;
}

/// First those in the plug-in's page order, then the rest in the order of definition.
std::vector<const ParameterDescription*> orderedPages(const ContextDescription& description)
{
    std::vector<const ParameterDescription*> pages;
    const auto add = [&](const ParameterDescription* page) {
        const bool isNew =
            page != nullptr && page->isPage() && std::ranges::find(pages, page) == pages.end();
        if (isNew) pages.push_back(page);
    };
    for (const std::string& name : description.pageOrder) add(description.parameter(name));
    for (const ParameterDescription& parameter : description.parameters) add(&parameter);
    return pages;
}

PanelPage layOut(const ParameterDescription& page, const ContextDescription& description,
                 std::set<std::string>& placed)
{
    PanelPage result{page.label.empty() ? page.name : page.label, {{}}};
    for (const std::string& child : page.pageChildren) {
        const ParameterDescription* const parameter = description.parameter(child);
        if (child == kOfxParamPageSkipColumn) {
            result.columns.emplace_back();
        } else if (child == kOfxParamPageSkipRow) {
            result.columns.back().emplace_back();
        } else if (parameter != nullptr && isShown(*parameter)) {
            result.columns.back().push_back(child);
            placed.insert(child);
        }
    }
    std::erase_if(result.columns, [](const std::vector<std::string>& column) {
        return std::ranges::all_of(column, [](const std::string& name) { return name.empty(); });
    });
    return result;
}

}  // namespace

std::vector<PanelPage> panelPages(const ContextDescription& description)
{
    std::vector<PanelPage> pages;
    std::set<std::string> placed;
    for (const ParameterDescription* const page : orderedPages(description)) {
        PanelPage arranged = layOut(*page, description, placed);
        if (!arranged.columns.empty()) pages.push_back(std::move(arranged));
    }
    std::vector<std::string> rest;
    for (const ParameterDescription& parameter : description.parameters) {
        if (isShown(parameter) && !placed.contains(parameter.name)) rest.push_back(parameter.name);
    }
    if (!rest.empty()) pages.push_back({pages.empty() ? kOnlyPage : kLastPage, {std::move(rest)}});
    return pages;
}

}  // namespace Tesseret::Viewer
