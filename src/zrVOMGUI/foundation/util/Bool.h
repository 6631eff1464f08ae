#pragma once

namespace ZR {

/// A truth value of exactly one byte, which may come from outside: every byte is a valid one, and
/// all but 0 are true. Lists of it are contiguous, unlike those of bool.
class Bool {
public:
    Bool() = default;
    Bool(bool value)
        : byte(value ? 1 : 0)
    {
    }

    operator bool() const { return byte != 0; }

private:
    unsigned char byte = 0;
};

static_assert(sizeof(Bool) == 1, "Payloads hold it as one byte.");

} // namespace ZR
