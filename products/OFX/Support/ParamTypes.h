#pragma once

#include <array>
#include <string>
#include <vector>

#include "products/OFX/Support/Coordinates.h"
#include "products/OFX/Support/Param.h"

namespace Orvane {

/// The range of a parameter without limits of its own, from -kParamLimit to kParamLimit.
inline constexpr float kParamLimit = 9000000.0f;

/// A parameter that has a value. Members named `initial` are the defaults.
class OvOfxValuedParam : public OvOfxCoded<OvOfxParam, 10> {
public:
    using OvOfxCoded::OvOfxCoded;
    std::string longHint;
    bool animates = true;
    bool canUndo = true;
    bool pluginMayWrite = false;
    bool persistent = true;
    bool clipPreferencesSlave = false;
    int cacheInvalidation = 0;  ///< 0 the value's time, 1 from there to the end, 2 all times
    bool evaluateOnChange = true;
};

class OvOfxIntegerParam : public OvOfxCoded<OvOfxValuedParam, 15> {
public:
    using OvOfxCoded::OvOfxCoded;
    [[nodiscard]] int value() const;
    [[nodiscard]] int valueAt(double time) const;
    void setValue(int value) const;

    int initial = 0;
    int min = 0;
    int max = 100;
    int displayMin = 0;
    int displayMax = 100;
};

class OvOfxDoubleParam : public OvOfxCoded<OvOfxValuedParam, 11> {
public:
    using OvOfxCoded::OvOfxCoded;
    [[nodiscard]] double value() const;
    [[nodiscard]] double valueAt(double time) const;
    [[nodiscard]] double derivativeAt(double time) const;
    [[nodiscard]] double integral(double from, double to) const;
    void setValue(double value) const;

    float min = -kParamLimit;
    float max = kParamLimit;
    float displayMin = 0.0f;
    float displayMax = 1.0f;
    float initial = 0.0f;
    float increment = 0.01f;
    int digits = 2;
    OvDoubleType doubleType = OvDoubleType::Plain;
};

class OvOfxBooleanParam : public OvOfxCoded<OvOfxValuedParam, 16> {
public:
    using OvOfxCoded::OvOfxCoded;
    [[nodiscard]] bool value() const;
    [[nodiscard]] bool valueAt(double time) const;
    void setValue(bool value) const;

    bool initial = false;
};

/// A switch of the user interface: on by default, without effect on the result.
class OvOfxInterfaceToggle final : public OvOfxCoded<OvOfxBooleanParam, 17> {
public:
    explicit OvOfxInterfaceToggle(std::string objectName);
};

class OvOfxChoiceParam : public OvOfxCoded<OvOfxValuedParam, 18> {
public:
    using OvOfxCoded::OvOfxCoded;
    [[nodiscard]] int value() const;
    [[nodiscard]] int valueAt(double time) const;
    void setValue(int index) const;
    /// The index of the default among the options, or -1.
    [[nodiscard]] int initialIndex() const;

    std::string initial;  ///< the option's text
    std::vector<std::string> options;
};

class OvOfxPushButton final : public OvOfxCoded<OvOfxParam, 21> {
public:
    using OvOfxCoded::OvOfxCoded;
};

/// A colour; also the base of the class with alpha. Without alpha the fourth component is ignored.
class OvOfxRGBParam : public OvOfxCoded<OvOfxValuedParam, 13> {
public:
    using OvOfxCoded::OvOfxCoded;
    /// 3, or 4 with an alpha.
    [[nodiscard]] int componentCount() const;
    [[nodiscard]] std::array<float, 4> valueAt(double time) const;
    void setValue(const std::array<float, 4>& value) const;

    std::array<float, 4> initial{};
    // The same for every component.
    float min = 0.0f;
    float max = 1.0f;
    float displayMin = 0.0f;
    float displayMax = 1.0f;
    float increment = 0.01f;
    int digits = 2;
};

class OvOfxRGBAParam final : public OvOfxCoded<OvOfxRGBParam, 14> {
public:
    using OvOfxCoded::OvOfxCoded;
};

class OvOfxStringParam final : public OvOfxCoded<OvOfxValuedParam, 22> {
public:
    using OvOfxCoded::OvOfxCoded;
    std::string initial;
    bool singleLine = true;  ///< else a label that cannot be edited
};

class OvOfxCustomParam final : public OvOfxCoded<OvOfxValuedParam, 40> {
public:
    using OvOfxCoded::OvOfxCoded;
    std::string initial;
};

/// A position, by default normalised and measured from the project's offset.
class OvOfxDouble2DParam : public OvOfxCoded<OvOfxValuedParam, 31> {
public:
    explicit OvOfxDouble2DParam(std::string objectName = "position");
    [[nodiscard]] OvPoint value() const;
    [[nodiscard]] OvPoint valueAt(double time) const;
    [[nodiscard]] OvPoint derivativeAt(double time) const;
    [[nodiscard]] OvPoint integral(double from, double to) const;
    void setValue(OvPoint value) const;

    OvDoubleType doubleType = OvDoubleType::NormalisedXYAbsolute;
    OvPoint initial{0.5f, 0.5f};
    OvPoint displayMin{-1.0f, -1.0f};
    OvPoint displayMax{1.0f, 1.0f};
    OvPoint min{-kParamLimit, -kParamLimit};
    OvPoint max{kParamLimit, kParamLimit};
    float increment = 1.0f;
    int digits = 2;
};

/// Parameters under one heading.
class OvOfxGroup : public OvOfxCoded<OvOfxParam, 9> {
public:
    using OvOfxCoded::OvOfxCoded;
    std::vector<OvOfxParam*> children;
};

/// An optional limit for a rectangle's corners.
struct OvRectLimit {
    OvPoint min{0.0f, 0.0f};
    OvPoint max{1.0f, 1.0f};
    bool enabled = false;
};

/// A rectangle given by two opposite corners, its only children.
class Rect2D final : public OvOfxCoded<OvOfxGroup, 34> {
public:
    explicit Rect2D(std::string objectName);

    OvOfxDouble2DParam corner1{"Point1"};
    OvOfxDouble2DParam corner2{"Point2"};
    OvRectLimit innerLimit;
    OvRectLimit outerLimit;
};

}  // namespace Orvane
