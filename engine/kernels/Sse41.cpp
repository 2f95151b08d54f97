/// The kernels for processors with SSE4.1; this file has its own compiler flags.

namespace Orvane::Engine::Kernels {
namespace {
constexpr int kLanes = 4;
}
}  // namespace Orvane::Engine::Kernels

#include "engine/kernels/Lanes.h"

namespace Orvane::Engine::Kernels {

constinit const KernelTable kSse41Table = tableNamed("sse4.1");

}  // namespace Orvane::Engine::Kernels
