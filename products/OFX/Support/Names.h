#pragma once

namespace Orvane {

/// Enumerations for values that the host passes as strings. Their numbers are part of the
/// framework's interface: hooks receive them as ints. A null or unknown name is None.
enum class OvField { None = 0, Lower = 1, Upper = 2 };
enum class OvDepth { None = 0, Byte = 1, Short = 2, Float = 3 };
enum class OvComponents { None = 0, RGBA = 1, Alpha = 2 };
enum class OvContext {
    None = 0,
    Generator = 1,
    Filter = 2,
    General = 3,
    Retimer = 4,
    Transition = 5,
    Paint = 6
};

/// Reasons for a change; None occurs only in the record that instance creation makes.
enum class OvChangeReason { None = 0, UserEdited = 1, PluginEdited = 2, TimeChanged = 3 };

[[nodiscard]] OvField fieldFromName(const char* name);
[[nodiscard]] OvDepth depthFromName(const char* name);
[[nodiscard]] OvComponents componentsFromName(const char* name);
[[nodiscard]] OvContext contextFromName(const char* name);
/// UserEdited for a null or unknown name.
[[nodiscard]] OvChangeReason changeReasonFromName(const char* name);

}  // namespace Orvane
