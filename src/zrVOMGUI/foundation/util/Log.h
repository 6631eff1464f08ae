#pragma once

#include "zrVOMGUI/foundation/util/export.h"

#include <string>
#include <vector>

namespace ZR {

/// Collects messages.
class ZRUTIL_EXPORT Log {
public:
    Log() = default;
    virtual ~Log();
    Log(Log const &) = delete;
    Log &operator=(Log const &) = delete;

    virtual void add(std::string const &message);
    /// In the order in which they came.
    std::vector<std::string> const &getMessages() const { return messages; }

private:
    std::vector<std::string> messages;
};

/// Reports errors into a log, and counts them.
class ZRUTIL_EXPORT ErrorManager {
public:
    /// `errorLog` isn't owned and must outlive the manager.
    explicit ErrorManager(Log &errorLog)
        : log(errorLog)
    {
    }

    void report(std::string const &message);

    unsigned errorCount = 0; ///< Not 0 after any error.

private:
    Log &log;
};

/// Tells of the progress of long work. This one tells nobody; a host derives from it.
class ZRUTIL_EXPORT Progress {
public:
    /// Long work with a `title`; `canCancel` says whether the user may be offered to end it.
    Progress(std::string const &workTitle, bool canCancel)
        : title(workTitle)
        , cancellable(canCancel)
    {
    }
    virtual ~Progress();
    Progress(Progress const &) = delete;
    Progress &operator=(Progress const &) = delete;

    /// The part of the work that is done, from 0 to 1. Answers false when the work is to end.
    virtual bool setDone(double part);

    std::string const &getTitle() const { return title; }
    bool isCancellable() const { return cancellable; }

private:
    std::string title;
    bool cancellable;
};

} // namespace ZR
