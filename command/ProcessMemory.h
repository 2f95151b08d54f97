#pragma once

namespace Tesseret::Command {

/// Lets the process keep the memory that it frees and take it in large pages. A render allocates
/// pictures and maps for one stage after another, and the system clears every page that it hands
/// out, which costs as much as the work on it. Before threads are started.
void keepMemory();

}  // namespace Tesseret::Command
