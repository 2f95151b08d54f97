#pragma once

/// What a plug-in described: its properties, and for each context its clips, parameters and pages,
/// in the order of definition.

#include <optional>
#include <string>
#include <vector>

#include "host/EffectObject.h"

namespace Tesseret::Host {

struct ClipDescription {
    std::string name;
    std::string label;
    std::vector<std::string> components;  ///< names of the interface
    bool optional = false;
    bool isMask = false;
    bool temporalAccess = false;
    bool supportsTiles = true;
    std::string fieldExtraction;
};

struct ParameterDescription {
    std::string name;
    std::string type;  ///< "OfxParamTypeInteger", ...
    std::string label;
    std::string scriptName;
    std::string hint;
    std::string parent;  ///< empty at the top level
    ParameterShape shape;
    ParameterValue initial;
    /// One number for each dimension; empty when the type has no range or the plug-in wrote none.
    std::vector<double> min, max, displayMin, displayMax;
    double increment = 1.0;
    int digits = 2;
    std::string doubleType;            ///< empty unless it is a double of 1 to 3 dimensions
    std::vector<std::string> options;  ///< of a choice
    std::string stringMode;
    std::vector<std::string> pageChildren;  ///< of a page, with its skip marks
    bool secret = false;
    bool enabled = true;
    bool animates = true;
    bool persistent = true;
    bool evaluateOnChange = true;
    bool canUndo = true;
    std::string cacheInvalidation;
    bool isClipPreferencesSlave = false;

    bool isGroup() const;
    bool isPage() const;
    bool isButton() const;
};

struct EffectDescription {
    std::string identifier;
    unsigned int versionMajor = 0;
    unsigned int versionMinor = 0;
    std::string label;
    std::string grouping;
    std::vector<std::string> contexts;
    std::vector<std::string> depths;
    bool supportsTiles = true;
    bool supportsMultiResolution = true;
    bool temporalClipAccess = false;
    bool multipleClipDepths = false;
    bool singleInstance = false;
    std::string threadSafety;
    bool hasOverlay = false;
};

struct ContextDescription {
    std::string context;
    std::vector<ClipDescription> clips;
    std::vector<ParameterDescription> parameters;  ///< groups and pages too
    std::vector<std::string> pageOrder;

    const ClipDescription* clip(std::string_view name) const;
    const ParameterDescription* parameter(std::string_view name) const;
};

/// What a describe action writes to.
class Descriptor final : public EffectObject {
public:
    explicit Descriptor(EmbeddedHost& host);
    /// For a context: starts with all that the plug-in described so far.
    Descriptor(EmbeddedHost& host, const Descriptor& main, std::string context);

    const std::string& context() const { return context_; }
    bool describing() const override { return describing_; }
    void setDescribing(bool describing) { describing_ = describing; }
    /// Without the plug-in record's three fields.
    EffectDescription describeEffect() const;
    ContextDescription describeContext() const;

private:
    std::string context_;
    bool describing_ = false;
};

ClipDescription describeClip(const Clip& clip);
ParameterDescription describeParameter(const Parameter& parameter);

}  // namespace Tesseret::Host
