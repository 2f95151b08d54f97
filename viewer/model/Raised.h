#pragma once

namespace Tesseret::Viewer {

/// Sets a flag for its lifetime.
class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

}  // namespace Tesseret::Viewer
