#pragma once

/// A shot that a queue renders in chunks: what each of them needs, as one JSON file in a folder.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "farm/Chunks.h"

namespace Tesseret::Farm {

/// What a queue is asked for; empty: its own default.
struct Resources {
    std::string partition, time, memory;
    std::string after;  ///< the id of the job that has to succeed first
    int cpus = 1;
    int atMost = 0;  ///< chunks that run at the same time; 0: any number
};

/// By a file's absolute name, the checksum of its bytes.
using FileSums = std::map<std::string, std::string>;

struct Job {
    std::filesystem::path folder;        ///< absolute, like every path here
    std::string version;                 ///< of the program that made the job
    std::filesystem::path program;       ///< `tesseret`
    std::vector<std::string> arguments;  ///< of its render, without those for the frames
    std::filesystem::path output;        ///< with a place for the frame number
    std::vector<std::filesystem::path> fixedInputs;  ///< mattes and textures, likewise or stills
    std::vector<int> frames;                         ///< ascending
    int chunkSize = 1;
    std::filesystem::path fill;  ///< the saved fill that all chunks repeat; empty: none
    std::string queue;           ///< "slurm" or "print"
    Resources resources;
    FileSums sums;  ///< of all files of fixedInputs

    std::vector<Chunk> chunks() const { return chunksOf(frames, chunkSize); }
    /// The files of mattes and textures for these frames, each once.
    std::vector<std::filesystem::path> fixedFiles(const std::vector<int>& frames) const;
    /// The words of the command that renders any of the frames, without those that name them.
    std::vector<std::string> renderCommand() const;

    std::filesystem::path file() const { return folder / "job.json"; }
    std::filesystem::path script() const { return folder / "chunk.sh"; }
    std::filesystem::path statusFolder() const { return folder / "status"; }
    std::filesystem::path statusOf(int chunk) const { return statusFolder() / chunkName(chunk); }
    std::filesystem::path logFolder() const { return folder / "logs"; }
    std::filesystem::path logOf(int chunk) const;
};

/// Writes `job.json`, whole or not at all. Throws `FileError`.
void writeJob(const Job& job);
/// The job in a folder. Throws `UsageError` for a folder without a job, or with one of another
/// version, and for one that was moved.
Job readJob(const std::filesystem::path& folder);

/// The checksums of files. Throws `FileError` for one that cannot be read.
FileSums sumsOf(const std::vector<std::filesystem::path>& files);
/// Throws `UsageError` for the first file that is not as it was, and `FileError`.
void checkSums(const FileSums& saved, const std::vector<std::filesystem::path>& files);

}  // namespace Tesseret::Farm
