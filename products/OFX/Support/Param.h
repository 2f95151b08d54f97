#pragma once

#include <functional>
#include <memory>
#include <string>

#include "products/OFX/Support/InstanceRecord.h"
#include "products/OFX/Support/ParamHandle.h"

namespace Orvane {

/// Anything an effect shows to its host by name: parameters, groups, pages, clips, and the markers
/// that pages are laid out with, which are of this class itself.
///
/// One object describes itself, is bound to the host's handle when an instance is created, and
/// answers queries: from the host when bound, else from its own default. The effect owns it.
class OvOfxParam {
public:
    static constexpr int kCode = 8;

    explicit OvOfxParam(std::string objectName = "parameter");
    OvOfxParam(const OvOfxParam&) = delete;
    OvOfxParam& operator=(const OvOfxParam&) = delete;

    // Virtual operations, in slot order.
    virtual ~OvOfxParam() = default;
    /// The code of the object's own class.
    [[nodiscard]] virtual int typeCode() const { return kCode; }
    /// Whether `code` is that of the object's class or of one of its bases.
    [[nodiscard]] virtual bool isA(int code) const { return code == kCode; }

    /// Forgets what happened to the object: its change time and its exclusion.
    void reset();
    /// The handle object when the host has the parameter, else null: then defaults answer.
    [[nodiscard]] const OvOfxParamHandle* knownHandle() const;

    std::unique_ptr<OvOfxParamHandle> handle;  ///< null until bound
    bool excluded = false;                     ///< skipped by definition, binding and page layout
    double changeTime = 0.0;
    std::string name;
    std::string label;
    std::string scriptName;
    std::string hint;
    bool secret = false;
    bool overlaySlave = false;  ///< a change redraws the overlay
    bool inUse = true;          ///< belongs to the context that the effect was bound to last
    /// Called when the host reports a change, and once at creation; empty does nothing.
    std::function<void(const OvOfxChangeRecord&)> onChange;
};

/// A class of the family: adds its code to the codes of `Base`.
template <typename Base, int Code>
class OvOfxCoded : public Base {
public:
    static constexpr int kCode = Code;
    using Base::Base;
    [[nodiscard]] int typeCode() const override { return Code; }
    [[nodiscard]] bool isA(int code) const override { return code == Code || Base::isA(code); }
};

/// The object as a `T`, or null when there is none or it is no `T`.
template <typename T>
T* paramCast(OvOfxParam* param)
{
    return param != nullptr && param->isA(T::kCode) ? static_cast<T*>(param) : nullptr;
}

template <typename T>
const T* paramCast(const OvOfxParam* param)
{
    return param != nullptr && param->isA(T::kCode) ? static_cast<const T*>(param) : nullptr;
}

}  // namespace Orvane
