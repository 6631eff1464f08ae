#pragma once

#include "trees/TreeScene.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

namespace tree_test {

using Scene2 = SceneT<GUI::V2::ObjectTreeView>;

/// For initTestCase_data() of a program whose tests are run with both generations.
inline void addGenerations()
{
    QTest::addColumn<bool>("second");
    QTest::newRow("first generation") << false;
    QTest::newRow("second generation") << true;
}

/// Runs a test with a scene of the generation that is under test.
template <class Test>
void withScene(Test const &test)
{
    QFETCH_GLOBAL(bool, second);
    if (second) {
        Scene2 scene;
        test(scene);
    } else {
        Scene scene;
        test(scene);
    }
}

template <class AnyScene>
void destroyViewWith(AnyScene &scene, RefT<Object> const &obj)
{
    obj->sigDelete.connect([&](auto const &) { scene.view.reset(); });
}

} // namespace tree_test
