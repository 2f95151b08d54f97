/// The kernels for processors with AVX2; this file has its own compiler flags.

namespace Orvane::Engine::Kernels {
namespace {
constexpr int kLanes = 8;
}
}  // namespace Orvane::Engine::Kernels

#include "engine/kernels/Lanes.h"

namespace Orvane::Engine::Kernels {

constinit const KernelTable kAvx2Table = tableNamed("avx2");

}  // namespace Orvane::Engine::Kernels
