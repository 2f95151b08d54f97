#pragma once

/// Parameter values as text, checked against the plug-in's description, and helpers to format them.

#include <map>
#include <string>
#include <string_view>

#include "host/Descriptor.h"

namespace Tesseret::Render {

struct NamedValue {
    std::string name;
    Host::ParameterValue value;
};

/// Values by name; those that are not the plug-in's defaults.
using ParameterValues = std::map<std::string, Host::ParameterValue>;

/// The value set, else the default. The parameter must exist.
const Host::ParameterValue& valueOf(const std::string& name, const ParameterValues& values,
                                    const Host::ContextDescription& description);

/// Parses "blockSize=64", "fillRegion=Entire Image" or "fillRegion=0", "luminanceMatch=on",
/// "sampleCorner1=0.1,0.2". Throws `UsageError`: no "=", an unknown name (with the nearest), a
/// value of another kind, out of range (with the range), a choice that does not exist (with the
/// choices).
NamedValue parseAssignment(std::string_view text, const Host::ContextDescription& description);

/// The value as `parseAssignment` accepts it, choices by name.
std::string valueText(const Host::ParameterDescription& parameter,
                      const Host::ParameterValue& value);

/// "30 to 9000000", with a range for each dimension where they differ; empty when there is none.
std::string rangeText(const std::vector<double>& min, const std::vector<double>& max);

/// A number as a person writes it: no superfluous digits, no exponent below 1e15.
std::string numberText(double number);
/// The same of a number rounded to so many digits in all.
std::string roundedText(double number, int digits);

/// Adds an item to a list that is text, with a separator before all but the first.
void appendItem(std::string& list, std::string_view separator, std::string_view item);

}  // namespace Tesseret::Render
