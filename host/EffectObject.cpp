#include "host/EffectObject.h"

#include <algorithm>

namespace Tesseret::Host {

EffectObject::EffectObject(EmbeddedHost& host, const char* setName)
    : host_(host), handle_(HandleKind::Effect, this), properties_(host, setName), parameters_(*this)
{}

EffectObject::~EffectObject() = default;

Clip* EffectObject::clip(std::string_view name) const
{
    const auto found = std::find_if(clips_.begin(), clips_.end(),
                                    [&](const auto& clip) { return clip->name() == name; });
    return found == clips_.end() ? nullptr : found->get();
}

Clip& EffectObject::addClip(std::unique_ptr<Clip> clip)
{
    return *clips_.emplace_back(std::move(clip));
}

}  // namespace Tesseret::Host
