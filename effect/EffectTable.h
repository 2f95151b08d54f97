#pragma once

/// Everything that a host sees of the effect, as data: labels, hints, values, pages, and the names
/// of effect/ParameterNames.h.

#include <array>
#include <span>
#include <variant>

namespace Tesseret {

inline constexpr const char* kIdentifier = "com.orvane.brisant.tesseret";
inline constexpr unsigned int kVersionMajor = 2;
inline constexpr unsigned int kVersionMinor = 1030000;

inline constexpr const char* kLabel = "Tesseret";
inline constexpr const char* kGrouping = "Brisant";
extern const char* const kDescription;

inline constexpr std::array kContexts = {"Filter", "General"};
inline constexpr std::array kPixelDepths = {"byte", "short", "float"};

/// The contexts in which a clip or parameter exists.
enum class In { Both, FilterOnly, GeneralOnly };

struct ClipRow {
    const char* name;
    const char* label;
    const char* components;  ///< "RGBA" or "alpha"
    bool optional = false;
    bool isMask = false;
    bool temporalAccess = false;
    In contexts = In::Both;
};

// The kinds of parameter, each with its data besides the names. `initial` is the default.
struct Integer {
    int initial, min, max, displayMin, displayMax;
};
struct Real {
    float initial, min, max, displayMin, displayMax, increment;
};
struct Boolean {
    bool initial;
};
/// A boolean that only the overlay uses.
struct InterfaceToggle {};
struct Choice {
    const char* initial;  ///< an option; hosts choose if it is not among them
    std::span<const char* const> options;
};
/// A corner of the sample region, in fractions of the project's size.
struct Corner {
    int number;  ///< 1 or 2
    float initialX, initialY;
};
struct Button {};

using ParamValue = std::variant<Integer, Real, Boolean, InterfaceToggle, Choice, Corner, Button>;

struct ParamRow {
    const char* name;
    const char* scriptName = nullptr;  ///< null: the name
    const char* label;
    const char* hint = "";
    ParamValue value;
    bool animates = false;
    In contexts = In::Both;
};

/// One row of a page: names of parameters, kEmptyCell where a cell stays empty, null at the end.
/// Names of parameters that a context lacks are skipped.
using PageLine = std::array<const char*, 5>;
inline constexpr const char* kEmptyCell = "";

struct PageRow {
    const char* name;
    const char* scriptName;
    std::span<const PageLine> lines;
};

/// The tables, in the order of definition.
std::span<const ClipRow> clipRows();
std::span<const ParamRow> paramRows();
std::span<const PageRow> pageRows();

}  // namespace Tesseret
