#include "effect/AboutText.h"

#include <array>
#include <cstdio>

#include "effect/EffectTable.h"

namespace Tesseret {
namespace {

// The family of plug-ins that this one appeared with.
constexpr int kFamilyMajor = 1;
constexpr int kFamilyMinor = 1;
constexpr const char* kFamilyTag = "v3";

}  // namespace

std::string makeAboutText(const Orvane::OvEffectDescriptor& descriptor)
{
    std::array<char, 1024> text{};
    std::snprintf(text.data(), text.size(), "%s \n%s %d.%d.%s (%u.%u)\n\n%s",
                  descriptor.label.c_str(), descriptor.grouping.c_str(), kFamilyMajor, kFamilyMinor,
                  kFamilyTag, kVersionMajor, kVersionMinor, descriptor.description.c_str());
    return text.data();
}

}  // namespace Tesseret
