#pragma once

#include <cstddef>
#include <span>

namespace Orvane::Engine {

/// Takes an instance's recorded blocks elsewhere, as bytes of `RecordBytes.h`. Called on the render
/// thread only.
class RecordExchange {
public:
    virtual ~RecordExchange() = default;
    /// A record for an instance without blocks to repeat; empty when there is none.
    virtual std::span<const std::byte> offered() = 0;
    /// Whether the record that was offered is in use now.
    virtual void taken(bool isUsable) = 0;
    /// Whether to call `made` after a fresh render.
    virtual bool isWanted() = 0;
    virtual void made(std::span<const std::byte> record) = 0;
};

}  // namespace Orvane::Engine
