#pragma once

/// What an effect handle leads to: a descriptor or an instance, with its properties, clips and
/// parameters.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/Clip.h"
#include "host/HandleRegistry.h"
#include "host/Parameter.h"
#include "host/PropertySet.h"

namespace Tesseret::Host {

class EmbeddedHost;
class Instance;

class EffectObject {
public:
    EffectObject(EmbeddedHost& host, const char* setName);
    virtual ~EffectObject();
    EffectObject(const EffectObject&) = delete;
    EffectObject& operator=(const EffectObject&) = delete;

    OfxImageEffectHandle handle() const { return handle_.as<OfxImageEffectHandle>(); }
    EmbeddedHost& host() const { return host_; }
    PropertySet& properties() { return properties_; }
    const PropertySet& properties() const { return properties_; }
    ParameterSet& parameters() { return parameters_; }
    const ParameterSet& parameters() const { return parameters_; }
    const std::vector<std::unique_ptr<Clip>>& clips() const { return clips_; }
    Clip* clip(std::string_view name) const;
    Clip& addClip(std::unique_ptr<Clip> clip);
    /// This object as an instance, or null.
    virtual Instance* instance() { return nullptr; }
    /// Whether clips and parameters may be defined now.
    virtual bool describing() const { return false; }

private:
    EmbeddedHost& host_;
    Handle handle_;
    PropertySet properties_;
    ParameterSet parameters_;
    std::vector<std::unique_ptr<Clip>> clips_;
};

}  // namespace Tesseret::Host
