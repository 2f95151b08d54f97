#pragma once

#include <string>
#include <vector>

namespace Tesseret::Viewer {

/// What a typed path can be continued to.
struct PathCompletion {
    std::string text;                ///< as far as all candidates agree; at least what was typed
    std::vector<std::string> names;  ///< the candidates in their folder, sorted, folders with a "/"
};

/// Completes the last part of a path from the files and folders that exist. A leading "~/" is the
/// home folder. Names that begin with a dot are candidates only once the dot is typed. A folder
/// that cannot be read has no candidates.
PathCompletion completePath(const std::string& typed);

/// The path with a candidate in place of its last part.
std::string withName(const std::string& typed, const std::string& name);

/// A leading "~/" becomes the home folder.
std::string expandHome(const std::string& typed);

}  // namespace Tesseret::Viewer
