#include "host/HostError.h"

#include <array>

namespace Tesseret::Host {

namespace {

constexpr std::array<const char*, 15> kStatusNames = {"kOfxStatOK",
                                                      "kOfxStatFailed",
                                                      "kOfxStatErrFatal",
                                                      "kOfxStatErrUnknown",
                                                      "kOfxStatErrMissingHostFeature",
                                                      "kOfxStatErrUnsupported",
                                                      "kOfxStatErrExists",
                                                      "kOfxStatErrFormat",
                                                      "kOfxStatErrMemory",
                                                      "kOfxStatErrBadHandle",
                                                      "kOfxStatErrBadIndex",
                                                      "kOfxStatErrValue",
                                                      "kOfxStatReplyYes",
                                                      "kOfxStatReplyNo",
                                                      "kOfxStatReplyDefault"};

}  // namespace

std::string statusText(OfxStatus status)
{
    std::string number = std::to_string(status);
    if (status < 0 || static_cast<std::size_t>(status) >= kStatusNames.size()) return number;
    return std::string(kStatusNames[static_cast<std::size_t>(status)]) + " (" + number + ")";
}

}  // namespace Tesseret::Host
