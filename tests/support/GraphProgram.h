#pragma once

#include "support/LinkOracle.h"
#include "support/Things.h"
#include "support/dump.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"

#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace ZR::VOM::GUI {

/// The draws of one step. A generator of its own lets a step do much the same when others are left
/// out.
class Dice {
public:
    Dice(unsigned seed, unsigned step)
        : generator(seed * 1009 + step)
    {
    }
    unsigned below(unsigned n) { return unsigned(generator()) % n; }
    bool oneIn(unsigned n) { return below(n) == 0; }
    char const *oneOf(std::initializer_list<char const *> texts)
    {
        return texts.begin()[below(unsigned(texts.size()))];
    }

private:
    std::mt19937 generator;
};

/// A random program of changes to a model and to two views of it, and all it works on.
class GraphProgram {
public:
    /// Its usual length.
    static constexpr unsigned numSteps = 150;

    explicit GraphProgram(unsigned programSeed);
    ~GraphProgram();
    GraphProgram(GraphProgram const &) = delete;
    GraphProgram &operator=(GraphProgram const &) = delete;

    /// Makes a step, which depends on the seed, its number and the steps before it. Answers what is
    /// wrong after it, or nothing.
    std::string step(unsigned number);
    /// In words.
    std::string const &lastStep() const { return said; }

    /// After how many steps a view had links that are worth meeting.
    struct Met {
        unsigned stations = 0; ///< With intermediate nodes,
        unsigned counts = 0;   ///< of several references,
        unsigned loops = 0;    ///< from a node to itself,
        unsigned merged = 0;   ///< of an opposed pair, which a layout made one,
        unsigned behind = 0;   ///< or other than in a view built anew.
    };
    Met const &getMet() const { return met; }

private:
    /// A view, and what it should show.
    struct Watched {
        Watched()
        {
            view.resize(300, 200);
            view.sigInsertNode.connect([this](auto const &data) { tell('+', *data.objs); });
            view.sigRemoveNode.connect([this](auto const &data) { tell('-', *data.objs); });
            view.sigSel.connect([this](auto const &) { told += "selection;"; });
        }
        void tell(char what, Things const &objs) { told += what + namesInOrder(objs) + ';'; }

        ObjectGraphView view;
        LinkOracle oracle;
        std::string told, toTell; // The signals of one step, and what they should be.
    };
    struct Deed {
        unsigned weight;
        void (GraphProgram::*act)(Dice &);
    };

    void say(std::string const &text);
    std::string check(Watched &watched, bool anew);
    void meet(Watched &watched);
    void makeView(unsigned index);

    void makeObject();
    RefT<Object> anyObject(Dice &dice);
    /// Those of a sorted list of names that are still there.
    Things named(std::vector<std::string> const &names) const;
    Things someObjects(Dice &dice, unsigned max);
    PtrT<Field> anyField(Dice &dice, bool (*wanted)(int type));
    void replaceLinks(Field &field, std::size_t index, std::size_t numRemoved, Things values);
    Watched &anyView(Dice &dice);
    std::string viewName(Watched const &watched) const;
    void addRandomField(Dice &dice, RefT<Object> const &obj);
    static void addRule(Watched &watched, bool out, char const *className, char const *name);

    // Of the views.
    void add(Dice &dice);
    void remove(Dice &dice);
    void clear(Dice &dice);
    void replaceView(Dice &dice);
    void show(Dice &dice);
    void hide(Dice &dice);
    void changeVisible(Watched &watched, Things const &list, bool visible);
    void select(Dice &dice);
    void click(Dice &dice);
    void selectByKey(Dice &dice);
    void clickArrow(Dice &dice);
    void layout(Dice &dice);
    void addRule(Dice &dice);
    void removeRule(Dice &dice);
    void label(Dice &dice);
    void tickOnce(Dice &dice);
    void finish(Dice &dice);
    void paint(Dice &dice);
    void resize(Dice &dice);
    void place(Dice &dice);
    void scroll(Dice &dice);
    void holdRefresh(Dice &dice);

    // Of the model.
    void setSingle(Dice &dice);
    void editList(Dice &dice);
    void addField(Dice &dice);
    void removeField(Dice &dice);
    void changeLabelField(Dice &dice);
    void letGo(Dice &dice);
    void bear(Dice &dice);

    static Deed const deeds[];

    const unsigned seed;
    std::vector<PtrT<Object>> objs; // All that ever were.
    Things held;
    std::unique_ptr<Watched> both[2];
    std::string said;
    Met met;
};

} // namespace ZR::VOM::GUI
