#pragma once

#include "trees/TreeScene.h"

#include <functional>

namespace tree_test {

/// Calls back before each answer, which is no icon.
class CallingIconDB : public GUI::ObjectIconDB {
public:
    QIcon find(RefT<Object> const &) const override
    {
        if (onFind)
            onFind();
        return {};
    }
    std::function<void()> onFind;
};

} // namespace tree_test
