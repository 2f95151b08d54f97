#include "inspect/PropertyList.h"

#include <string_view>

#include <pugixml.hpp>

namespace Tesseret::Inspect {

std::map<std::string, std::string> readPropertyList(const std::filesystem::path& file)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(file.c_str());
    if (!result) throw PropertyListError(std::string("it is no XML: ") + result.description());
    const pugi::xml_node dictionary = document.child("plist").child("dict");
    if (!dictionary) throw PropertyListError("it has no <plist> with a <dict>");
    std::map<std::string, std::string> values;
    std::string key;
    for (const pugi::xml_node& node : dictionary.children()) {
        const std::string_view name = node.name();
        if (name == "key") {
            key = node.text().get();
        } else if (name == "string" && !key.empty()) {
            values[key] = node.text().get();
        }
        if (name != "key") key.clear();
    }
    return values;
}

}  // namespace Tesseret::Inspect
