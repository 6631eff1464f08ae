#include "support/GraphProgram.h"

#include "support/LinkScene.h"
#include "support/ViewCheck.h"
#include "support/dump.h"

#include <QRegularExpression>
#include <QtGlobal>

#include <iostream>

namespace ZR::VOM::GUI {

namespace {

std::string differences(std::string const &what, std::string const &actual,
                        std::string const &expected)
{
    return actual == expected
               ? ""
               : what + "\n    are        " + actual + "\n    instead of " + expected + '\n';
}

std::string withoutStations(std::string const &links)
{
    return QString::fromStdString(links).remove(QRegularExpression("/\\d+")).toStdString();
}

} // namespace

GraphProgram::Deed const GraphProgram::deeds[] = {
    {7, &GraphProgram::add},         {4, &GraphProgram::remove},
    {1, &GraphProgram::clear},       {1, &GraphProgram::replaceView},
    {20, &GraphProgram::show},       {4, &GraphProgram::hide},
    {3, &GraphProgram::select},      {4, &GraphProgram::click},
    {1, &GraphProgram::selectByKey}, {4, &GraphProgram::clickArrow},
    {14, &GraphProgram::layout},     {6, &GraphProgram::addRule},
    {3, &GraphProgram::removeRule},  {2, &GraphProgram::label},
    {4, &GraphProgram::tickOnce},    {2, &GraphProgram::finish},
    {3, &GraphProgram::paint},       {1, &GraphProgram::resize},
    {2, &GraphProgram::place},       {1, &GraphProgram::scroll},
    {1, &GraphProgram::holdRefresh}, {22, &GraphProgram::setSingle},
    {22, &GraphProgram::editList},   {10, &GraphProgram::addField},
    {5, &GraphProgram::removeField}, {8, &GraphProgram::changeLabelField},
    {3, &GraphProgram::letGo},       {5, &GraphProgram::bear},
};

GraphProgram::GraphProgram(unsigned programSeed)
    : seed(programSeed)
{
    Dice dice(seed, numSteps);
    while (objs.size() < 9)
        makeObject();
    for (RefT<Object> const &obj : held) {
        addRandomField(dice, obj);
        addRandomField(dice, obj);
        VOM::addField<FieldString>(*obj, "label", nameOf(obj));
    }
    for (unsigned i : {0u, 1u}) {
        makeView(i);
        both[i]->oracle.add(held);
        both[i]->view.add(held, false);
    }
}

void GraphProgram::makeView(unsigned index)
{
    both[index] = std::make_unique<Watched>();
    Watched &watched = *both[index];
    watched.view.setFieldName("label");
    addRule(watched, true, "", "f");
    addRule(watched, true, "", "g");
    addRule(watched, false, "", "h");
}

GraphProgram::~GraphProgram()
{
    // Objects that own each other in a circle let go.
    for (PtrT<Object> const &obj : objs)
        for (std::size_t i = 0; obj && i < obj->getNumFields(); ++i) {
            const RefT<Field> field = obj->getField(i);
            if (field->getType() == 6 || field->getType() == 12)
                storeLinks(*field, 0, valuesOf(*field).size(), {});
        }
}

void GraphProgram::say(std::string const &text)
{
    static const bool trace = qEnvironmentVariableIsSet("ZRVOMGUI_TRACE");
    said = text;
    if (trace)
        std::cerr << text << std::endl;
}

std::string GraphProgram::step(unsigned number)
{
    Dice dice(seed, number);
    for (auto const &watched : both) {
        watched->told.clear();
        watched->toTell.clear();
    }
    unsigned sum = 0;
    for (Deed const &deed : deeds)
        sum += deed.weight;
    unsigned drawn = dice.below(sum);
    Deed const *deed = deeds;
    for (; drawn >= deed->weight; ++deed)
        drawn -= deed->weight;
    said.clear();
    (this->*deed->act)(dice);

    std::string wrong;
    for (unsigned i : {0u, 1u}) {
        both[i]->oracle.forgetDead();
        const std::string inView = check(*both[i], number % 2 == i);
        if (!inView.empty())
            wrong += viewName(*both[i]) + inView;
        meet(*both[i]);
    }
    return wrong;
}

std::string GraphProgram::check(Watched &watched, bool anew)
{
    ObjectGraphView &view = watched.view;
    LinkOracle const &oracle = watched.oracle;
    std::string wrong = faultsOf(view);
    if (!wrong.empty())
        return wrong + '\n';
    wrong += differences("links", withoutStations(dumpLinks(view)), oracle.links());
    wrong += differences("nodes", dumpNodes(view), oracle.nodes());
    wrong += differences("visible", namesOf(view.getVisibleObjs()), joined(oracle.names(true)));
    wrong += differences("selected", namesOf(view.getSel()), joined(oracle.names(true, true)));
    wrong += differences("signals", watched.told, watched.toTell);
    if (!anew)
        return wrong;

    ObjectGraphView fresh;
    for (bool out : {true, false})
        for (auto const &[className, name] : oracle.getRules(out))
            out ? fresh.addOutLinkField(className, name) : fresh.addInLinkField(className, name);
    fresh.setFieldName(view.getFieldName());
    fresh.setTypeName(view.isTypeName());
    fresh.add(view.getObjs(), false);
    wrong += differences("new links", dumpLinks(fresh), oracle.newLinks());
    if (!oracle.isBehind())
        wrong += differences("links beside new ones", withoutStations(dumpLinks(view)),
                             dumpLinks(fresh));
    wrong += differences("labels", dumpLabels(view), dumpLabels(fresh));
    return wrong;
}

void GraphProgram::meet(Watched &watched)
{
    const std::string links = dumpLinks(watched.view);
    met.stations += links.find('/') != std::string::npos;
    met.counts += links.find(':') != std::string::npos;
    met.merged += watched.oracle.hasMerged();
    met.behind += watched.oracle.isBehind();
    for (std::string const &name : watched.oracle.names())
        if (links.find(name + '>' + name) != std::string::npos) {
            ++met.loops;
            break;
        }
}

void GraphProgram::makeObject()
{
    const std::size_t number = objs.size();
    const std::string name(1, char(number < 26 ? 'a' + number : 'A' + number % 26));
    switch (number % 3) {
    case 0:
        held.push_back(makeThing(name));
        break;
    case 1:
        held.push_back(makeThing<Special>(name));
        break;
    default:
        held.push_back(makeThing<Stranger>(name));
    }
    objs.emplace_back(held.back());
}

RefT<Object> GraphProgram::anyObject(Dice &dice)
{
    Things living;
    for (PtrT<Object> const &obj : objs)
        if (obj)
            living.emplace_back(obj);
    return living.empty() ? RefT<Object>() : living[dice.below(unsigned(living.size()))];
}

/// Null references are among them at times, and one object may come twice.
Things GraphProgram::someObjects(Dice &dice, unsigned max)
{
    Things list;
    for (unsigned num = dice.below(max + 1); num > 0; --num)
        list.push_back(dice.oneIn(12) ? RefT<Object>() : anyObject(dice));
    return list;
}

PtrT<Field> GraphProgram::anyField(Dice &dice, bool (*wanted)(int type))
{
    std::vector<PtrT<Field>> fields;
    for (PtrT<Object> const &obj : objs)
        for (std::size_t i = 0; obj && i < obj->getNumFields(); ++i)
            if (wanted(obj->getField(i)->getType()) && obj->getField(i)->name != "name")
                fields.emplace_back(obj->getField(i));
    return fields.empty() ? PtrT<Field>() : fields[dice.below(unsigned(fields.size()))];
}

GraphProgram::Watched &GraphProgram::anyView(Dice &dice)
{
    return *both[dice.below(2)];
}

std::string GraphProgram::viewName(Watched const &watched) const
{
    return &watched == both[0].get() ? "first view: " : "second view: ";
}

} // namespace ZR::VOM::GUI
