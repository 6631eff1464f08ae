#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// Who may know whom, held against the include lines of one source file.
namespace IncludeRules {

struct Include {
    int line;     ///< Counted from 1.
    QString name; ///< What stands between the quotes or angle brackets.
    bool angled;  ///< Written in angle brackets.
};

/// The include lines of a source text, those in comments left out.
std::vector<Include> includesOf(QString const &text);

/// What `text` includes against the rules, as "FILE:LINE: includes NAME: RULE", in the order of the
/// lines. `path` is the file's path below src/zrVOMGUI/, and decides which rules hold for it.
QStringList violations(QString const &path, QString const &text);

} // namespace IncludeRules
