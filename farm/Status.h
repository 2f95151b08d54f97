#pragma once

/// How far a job is: from the files that it wrote, the reports of its chunks, and the queue.

#include <string>
#include <vector>

#include "farm/Queue.h"

namespace Tesseret::Farm {

enum class ChunkState {
    Waiting,  ///< for the queue
    Running,
    Done,    ///< all its frames are there
    Failed,  ///< frames are missing, and nothing is going to write them
};

struct ChunkStatus {
    Chunk chunk;
    ChunkState state = ChunkState::Waiting;
    std::vector<int> missing;  ///< frames without a file
    std::string error;         ///< one line; of a failed chunk only
};

struct JobStatus {
    std::vector<ChunkStatus> chunks;
    bool isQueueKnown = true;  ///< else a running chunk is known by its heartbeat only
    std::size_t written = 0;   ///< frames since the last submission
    double seconds = 0.0;      ///< since its first chunk started; 0: none did
    long now = 0;              ///< in seconds since 1970

    /// Frames of chunks in a state: of those that are done all, else the missing ones.
    std::size_t frames(ChunkState state) const;
    /// Frames that have a file.
    std::size_t framesDone() const;
    std::size_t frameCount() const;
    /// Frames a second since the last submission; 0 where none was written yet.
    double rate() const;
    bool isActive() const;   ///< something waits or runs
    bool hasFailed() const;  ///< a chunk did
};

/// What a chunk's script reported; an empty state: nothing yet.
struct ChunkReport {
    std::string state, job, error;
    int code = 0;
    long started = 0;
    double age = 0.0;  ///< seconds since the report or its last heartbeat
};

/// Of a file that the script writes; unknown lines are skipped.
ChunkReport readReport(const std::filesystem::path& file);

/// A chunk's state from its report, from whether frames are missing, and from the queue: its entry,
/// if there is one, and whether the queue could be asked.
ChunkState stateOf(const ChunkReport& report, bool isMissing, const QueueEntry* entry,
                   bool isQueueKnown);

JobStatus statusOf(const Job& job, const Queue& queue);

}  // namespace Tesseret::Farm
