// What signals, pointers and lists of links cost, without a widget.
//
//     ./run bench foundation [--repeat N]
//
// Times are medians of N runs (9 by default), in processor time. Where a row stands for a small
// operation, a run does it as often as takes milliseconds, and the figure is that of one. "growth"
// compares with the row before, where that has the same name: the factor of the time over the
// factor of the size; for what must take the same time at any size it is the factor of the time
// alone, and says so by "constant".
//
// - connect: one more slot, with as many connected as the size says.
// - emit: one emission to as many slots, each of which adds to a number. 0 is a signal that nobody
//   has ever connected to.
// - link, unlink: a watching pointer set to and taken from a target that as many others watch; it
//   stands in the middle of them when it leaves.
// - reference: an owning reference copied and dropped.
// - death: an object destroyed that as many pointers watch, for each of these.
// - object: the memory of an object with one field of each of the seven kinds and no listener, over
//   as many objects, in bytes as the heap counts them, and the time to create it and destroy it.
// - build list: a list field built of as many links to as many objects, by one change.
// - replace list: all links of such a list replaced by as many, by one change.
// - insert at begin: one link put before all of such a list, and taken away again.
//   "owning" is a list of references, "watching" one that also hears of its targets' deaths.

#include "support/statistics.h"
#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/vom/MField.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ZR;
using VOM::MFieldPtr;
using VOM::MFieldRef;

class Target : public Class {};

enum class Growth { WithSize, Constant };

/// Prints the rows of the table and knows the row before.
class Table {
public:
    explicit Table(int numRepeats)
        : repeat(numRepeats)
    {
        std::printf("%-26s %10s %14s %10s\n", "operation", "size", "median", "growth");
    }

    /// A row of the median time that `run` answers, in seconds for one operation.
    void time(std::string const &name, std::size_t size, Growth growth,
              std::function<double()> const &run)
    {
        std::vector<double> times;
        for (int i = 0; i < repeat; ++i)
            times.push_back(run());
        const double median = medianOf(times);
        std::printf("%-26s %10zu %14s %10s\n", name.c_str(), size, timeText(median).c_str(),
                    growthText(name, size, growth, median).c_str());
        lastName = name;
        lastSize = size;
        lastTime = median;
    }

    void bytes(std::string const &name, std::size_t size, double value)
    {
        std::printf("%-26s %10zu %12.0f B %10s\n", name.c_str(), size, value, "");
        lastName.clear();
    }

private:
    static std::string timeText(double seconds)
    {
        char text[32];
        if (seconds < 1e-5)
            std::snprintf(text, sizeof(text), "%.1f ns", seconds * 1e9);
        else if (seconds < 1e-2)
            std::snprintf(text, sizeof(text), "%.1f us", seconds * 1e6);
        else
            std::snprintf(text, sizeof(text), "%.1f ms", seconds * 1e3);
        return text;
    }

    std::string growthText(std::string const &name, std::size_t size, Growth growth,
                           double seconds) const
    {
        if (name != lastName || lastTime <= 0 || lastSize == 0)
            return {};
        const double timeFactor = seconds / lastTime;
        const double sizeFactor = static_cast<double>(size) / static_cast<double>(lastSize);
        char text[32];
        if (growth == Growth::Constant)
            std::snprintf(text, sizeof(text), "%.2f constant", timeFactor);
        else
            std::snprintf(text, sizeof(text), "%.2f", timeFactor / sizeFactor);
        return text;
    }

    int repeat;
    std::string lastName;
    std::size_t lastSize = 0;
    double lastTime = 0;
};

/// The time of one of `num` times that `work` is done.
double timeOfOne(std::size_t num, std::function<void(std::size_t)> const &work)
{
    const double begin = processorTime();
    for (std::size_t i = 0; i < num; ++i)
        work(i);
    return (processorTime() - begin) / static_cast<double>(num);
}

void benchSignals(Table &table)
{
    for (std::size_t num : {1, 10, 1000, 100000}) {
        SignalT<SigVoidData> signal;
        for (std::size_t i = 0; i < num; ++i)
            signal.connect([](SigVoidData const &) {});
        table.time("connect", num, Growth::Constant, [&] {
            std::vector<Signal::Connection> connections(1000);
            const double time = timeOfOne(connections.size(), [&](std::size_t i) {
                connections[i] = signal.connect([](SigVoidData const &) {});
            });
            for (Signal::Connection &connection : connections)
                connection.disconnect();
            return time;
        });
    }
    long sum = 0;
    for (std::size_t num : {0, 1, 10, 1000}) {
        SignalT<SigVoidData> signal;
        for (std::size_t i = 0; i < num; ++i)
            signal.connect([&sum](SigVoidData const &) { ++sum; });
        SigVoidData data;
        table.time("emit", num, Growth::WithSize, [&] {
            return timeOfOne(1000000 / (num + 10), [&](std::size_t) { signal.emit(data); });
        });
    }
    if (sum == 0)
        std::puts("No slot was called.");
}

void benchLinking(Table &table)
{
    constexpr std::size_t numMeasured = 100000;
    for (bool isLinking : {true, false}) {
        for (std::size_t num : {std::size_t(1), std::size_t(100000)}) {
            const RefT<Target> target(new Target);
            std::vector<PtrT<Target>> measured(numMeasured);
            table.time(isLinking ? "link" : "unlink", num, Growth::Constant, [&] {
                const std::vector<PtrT<Target>> before(num / 2, PtrT<Target>(target));
                const PtrT<Target> source(target);
                const auto link = [&](std::size_t i) { measured[i] = source; };
                const double linking = timeOfOne(numMeasured, link);
                const std::vector<PtrT<Target>> after(num - num / 2, PtrT<Target>(target));
                const double unlinking =
                    timeOfOne(numMeasured, [&](std::size_t i) { measured[i].reset(); });
                return isLinking ? linking : unlinking;
            });
        }
    }
}

void benchReferences(Table &table)
{
    const RefT<Target> target(new Target);
    table.time("reference", 1, Growth::Constant, [&] {
        return timeOfOne(1000000, [&](std::size_t) { const RefT<Target> copy(target); });
    });
    for (std::size_t num : {std::size_t(1), std::size_t(1000), std::size_t(1000000)}) {
        table.time("death", num, Growth::Constant, [&] {
            const std::size_t numDeaths = std::max<std::size_t>(1, 100000 / num);
            std::vector<RefT<Target>> targets;
            std::vector<PtrT<Target>> watchers;
            for (std::size_t i = 0; i < numDeaths; ++i) {
                targets.emplace_back(new Target);
                watchers.insert(watchers.end(), num, PtrT<Target>(targets.back()));
            }
            const auto die = [&](std::size_t i) { targets[i].reset(); };
            return timeOfOne(numDeaths, die) / static_cast<double>(num);
        });
    }
}

RefT<VOM::Object> newFullObject()
{
    using namespace VOM;
    RefT<VOM::Object> object(new VOM::Object(0));
    addField<FieldInt>(*object, "int");
    addField<FieldReal>(*object, "real");
    addField<FieldString>(*object, "string");
    addField<FieldPtr>(*object, "ptr");
    addField<FieldRef>(*object, "ref");
    addField<MFieldPtr>(*object, "ptrs");
    addField<MFieldRef>(*object, "refs");
    return object;
}

void benchObjects(Table &table)
{
    constexpr std::size_t num = 100000;
    std::vector<RefT<VOM::Object>> objects(num);
    const std::size_t before = mallinfo2().uordblks;
    for (RefT<VOM::Object> &object : objects)
        object = newFullObject();
    table.bytes("object", num,
                static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(num));
    objects.clear();
    objects.resize(num);
    table.time("object, created", num, Growth::Constant, [&] {
        const double time = timeOfOne(num, [&](std::size_t i) { objects[i] = newFullObject(); });
        objects.assign(num, {});
        return time;
    });
    table.time("object, destroyed", num, Growth::Constant, [&] {
        for (RefT<VOM::Object> &object : objects)
            object = newFullObject();
        return timeOfOne(num, [&](std::size_t i) { objects[i].reset(); });
    });
}

template <class ListField>
void benchLists(Table &table, std::string const &kind)
{
    const std::vector<std::size_t> sizes = {10000, 100000, 1000000};
    std::vector<RefT<VOM::Object>> targets;
    for (std::size_t i = 0; i < sizes.back(); ++i)
        targets.emplace_back(new VOM::Object(0));
    const auto links = [&](std::size_t num) {
        return typename ListField::Values(targets.begin(),
                                          targets.begin() + static_cast<std::ptrdiff_t>(num));
    };
    for (std::size_t num : sizes) {
        table.time("build list, " + kind, num, Growth::WithSize, [&] {
            VOM::Object object(0);
            auto &field = VOM::addField<ListField>(object, "links");
            auto values = links(num);
            return timeOfOne(1, [&](std::size_t) { field.replace(0, 0, std::move(values)); });
        });
    }
    for (std::size_t num : sizes) {
        VOM::Object object(0);
        auto &field = VOM::addField<ListField>(object, "links", links(num));
        table.time("replace list, " + kind, num, Growth::WithSize, [&] {
            auto values = links(num);
            std::reverse(values.begin(), values.end());
            return timeOfOne(1, [&](std::size_t) { field.replace(0, num, std::move(values)); });
        });
    }
    for (std::size_t num : sizes) {
        VOM::Object object(0);
        auto &field = VOM::addField<ListField>(object, "links", links(num));
        table.time("insert at begin, " + kind, num, Growth::WithSize, [&] {
            return timeOfOne(2, [&](std::size_t) {
                field.replace(0, 0, links(1));
                field.replace(0, 1, {});
            });
        });
    }
}

} // namespace

int main(int argc, char **argv)
{
    int repeat = 9;
    if (argc == 3 && std::strcmp(argv[1], "--repeat") == 0)
        repeat = std::atoi(argv[2]);
    if (repeat < 1 || argc == 2 || argc > 3) {
        std::fprintf(stderr, "usage: bench_foundation [--repeat N]\n");
        return 2;
    }
    Table table(repeat);
    benchSignals(table);
    benchLinking(table);
    benchReferences(table);
    benchObjects(table);
    benchLists<MFieldRef>(table, "owning");
    benchLists<MFieldPtr>(table, "watching");
    return 0;
}
