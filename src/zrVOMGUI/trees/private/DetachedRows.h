#pragma once

// Not for hosts.

#include <QObject>
#include <QPointer>

#include <vector>

namespace ZR::GUI {
class TreeRow;
}

namespace ZR::VOM::GUI::Trees {

/// Rows that exist and lie in no tree for a while: those of a row that rebuilds its children, and
/// one that was just made. A host is called meanwhile, and what it sets on the view reaches these
/// rows by way of here. Lies on the stack; inner ones end before outer ones.
class DetachedRows {
public:
    /// `latest` is the view's list of them.
    DetachedRows(QObject &ofView, DetachedRows *&latest)
        : view(&ofView)
        , list(latest)
        , outer(latest)
    {
        list = this;
    }
    virtual ~DetachedRows() { leave(); }
    DetachedRows(DetachedRows const &) = delete;
    DetachedRows &operator=(DetachedRows const &) = delete;

    static void collectAll(DetachedRows const *latest, std::vector<ZR::GUI::TreeRow *> &found)
    {
        for (DetachedRows const *at = latest; at; at = at->outer)
            at->collect(found);
    }

protected:
    /// Appends the rows, each with all that is below it.
    virtual void collect(std::vector<ZR::GUI::TreeRow *> &found) const = 0;
    /// Nobody looks for rows here any more. For destructors in which rows die, and hosts are told.
    void leave()
    {
        if (view)
            list = outer;
        view.clear();
    }

private:
    QPointer<QObject> view; // Null once it is destroyed, and the list with it.
    DetachedRows *&list;
    DetachedRows *const outer;
};

/// A row between its birth and its entry into the tree.
class NewRow : DetachedRows {
public:
    NewRow(QObject &ofView, DetachedRows *&latest, ZR::GUI::TreeRow &made)
        : DetachedRows(ofView, latest)
        , row(made)
    {
    }

private:
    void collect(std::vector<ZR::GUI::TreeRow *> &found) const override { found.push_back(&row); }

    ZR::GUI::TreeRow &row;
};

} // namespace ZR::VOM::GUI::Trees
