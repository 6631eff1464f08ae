#pragma once

namespace ZR {

/// Scoped guard against re-entry: a function returns at once if its flag is set, and otherwise
/// holds a LockBool on it.
class LockBool {
public:
    explicit LockBool(bool &guardedFlag)
        : flag(guardedFlag)
    {
        flag = true;
    }
    ~LockBool() { flag = false; } // KEPT: not what was there, for functions that look first.
    LockBool(LockBool const &) = delete;
    LockBool &operator=(LockBool const &) = delete;

private:
    bool &flag;
};

} // namespace ZR
