#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace Tesseret::Fuzz {

/// Choices made from the bytes of a fuzzer's input; behind its end from numbers that depend on all
/// of it. So the few bytes of a seed already make a whole case, and a fuzzer can change any choice.
class Choices {
public:
    explicit Choices(std::span<const std::uint8_t> input) : input_(input)
    {
        for (const std::uint8_t byte : input) state_ = (state_ ^ byte) * 0x100000001B3u;
    }

    std::uint32_t bits()
    {
        if (input_.size() <= kSeedBytes) return random();
        std::uint32_t value = 0;
        for (int i = 0; i < 2; ++i) value = value << 8 | next();
        // Both the fuzzer's bytes, which choose, and wide numbers.
        return value * 0x10001u;
    }
    /// Including both ends.
    int from(int low, int high)
    {
        const std::int64_t count = std::int64_t{high} - low + 1;
        return static_cast<int>(low + static_cast<std::int64_t>(bits()) % count);
    }
    /// Once in so many.
    bool once(int in) { return from(1, in) == 1; }
    template <typename Value>
    Value oneOf(std::initializer_list<Value> values)
    {
        return values.begin()[from(0, static_cast<int>(values.size()) - 1)];
    }

private:
    /// Inputs up to this size are seeds only.
    static constexpr std::size_t kSeedBytes = 8;

    std::uint8_t next()
    {
        if (position_ < input_.size()) return input_[position_++];
        return static_cast<std::uint8_t>(random());
    }
    /// Marsaglia's xorshift with a multiplication behind it.
    std::uint32_t random()
    {
        state_ ^= state_ >> 12;
        state_ ^= state_ << 25;
        state_ ^= state_ >> 27;
        return static_cast<std::uint32_t>(state_ * 0x2545F4914F6CDD1Du >> 32);
    }

    std::span<const std::uint8_t> input_;
    std::size_t position_ = 0;
    std::uint64_t state_ = 0xCBF29CE484222325u;  // FNV-1a of the input
};

}  // namespace Tesseret::Fuzz
