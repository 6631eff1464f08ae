#pragma once

// Not for hosts.

namespace ZR::VOM::GUI::Trees {

/// Tells a function of a row whether the row is still there after a host was called, who may do
/// anything. Lies on the stack; inner ones end before outer ones.
class RowWatch {
public:
    template <class Row>
    explicit RowWatch(Row &row)
        : latest(&row.watches)
        , outer(row.watches)
    {
        row.watches = this;
    }
    ~RowWatch()
    {
        if (latest)
            *latest = outer;
    }
    RowWatch(RowWatch const &) = delete;
    RowWatch &operator=(RowWatch const &) = delete;

    bool isGone() const { return !latest; }

    /// For the destructor of a row.
    static void tellGone(RowWatch *watches)
    {
        for (RowWatch *watch = watches; watch; watch = watch->outer)
            watch->latest = nullptr;
    }

private:
    RowWatch **latest; // Of the row's watches; null once the row is gone.
    RowWatch *const outer;
};

} // namespace ZR::VOM::GUI::Trees
