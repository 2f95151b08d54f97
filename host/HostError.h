#pragma once

/// An error of the host or in loading and preparing a plug-in, as one clear line.

#include <optional>
#include <stdexcept>
#include <string>

#include "ofx/ofxCore.h"

namespace Tesseret::Host {

class HostError : public std::runtime_error {
public:
    explicit HostError(const std::string& line) : std::runtime_error(line) {}
    HostError(const std::string& line, OfxStatus status) : std::runtime_error(line), status_(status)
    {}

    /// The status that the plug-in returned, when that is the reason.
    std::optional<OfxStatus> status() const { return status_; }

private:
    std::optional<OfxStatus> status_;
};

/// "kOfxStatErrBadHandle (9)"; a status without a name is the number alone.
std::string statusText(OfxStatus status);

}  // namespace Tesseret::Host
