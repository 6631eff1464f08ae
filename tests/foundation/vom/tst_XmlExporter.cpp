#include "support/QtStrings.h"
#include "support/XmlModel.h"

#include <QTest>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

class Reacting : public Progress {
public:
    explicit Reacting(std::function<bool(double)> reaction)
        : Progress("", true)
        , react(std::move(reaction))
    {
    }
    bool setDone(double part) override { return react(part); }

private:
    std::function<bool(double)> react;
};

RefT<Object> manyParts()
{
    const RefT<Object> root = makeThing("root");
    Things parts;
    for (int i = 0; i < 5000; ++i)
        parts.push_back(makeThing("part"));
    setLinks<MFieldRef>(root, "parts", parts);
    return root;
}

/// The reports of an export that must leave `out` as it was.
std::string failedExport(RefT<Object> const &root, std::function<bool(double)> reaction)
{
    XmlErrors errors;
    Reacting progress(std::move(reaction));
    std::string out = "before";
    XmlExporter().createContext(root)->export_(out, "title", errors.manager, progress);
    return out == "before" ? errors.text() : "out has changed";
}

} // namespace

/// How the exporter works with its surroundings. What it writes is the round trip's affair.
class tst_XmlExporter : public QObject {
    Q_OBJECT

private slots:
    void appendsToTheText();
    void contextWritesTheModelOfTheMoment();
    void leavesTheModelAlone();
    void nullObjectIsAnError();
    void deadObjectIsAnError();
    void progressRisesToTheEnd();
    void cancelledExportLeavesTheText();
    void exceptionOfTheProgressIsAnError();
};

void tst_XmlExporter::appendsToTheText()
{
    XmlErrors errors;
    Progress progress("", false);
    std::string out = "before ";
    const RefT<Object> root = makeThing("root");
    XmlExporter().createContext(root)->export_(out, "", errors.manager, progress);
    QCOMPARE(out, "before " + toXml(root, errors.manager));
    QCOMPARE(errors.count(), 0u);
}

void tst_XmlExporter::contextWritesTheModelOfTheMoment()
{
    XmlErrors errors;
    Progress progress("", false);
    const RefT<Object> root = makeThing("old");
    const RefT<Exporter::Context> context = XmlExporter().createContext(root);
    fieldOf<FieldString>(root, "name").set("new");
    std::string first, second;
    context->export_(first, "", errors.manager, progress);
    context->export_(second, "", errors.manager, progress);
    QVERIFY(first.find("new") != std::string::npos);
    QCOMPARE(first, second);
}

void tst_XmlExporter::leavesTheModelAlone()
{
    const RefT<Object> root(new Fixed);
    setLinks<MFieldRef>(root, "refs", makeThings("abc"));
    int numSignals = 0;
    fieldOf<MFieldRef>(root, "refs").sigReplace.connect([&](auto const &) { ++numSignals; });
    fieldOf<MFieldRef>(root, "refs").sigCanReplace.connect([&](auto const &) { ++numSignals; });
    const std::string before = modelText(root);
    XmlErrors errors;
    toXml(root, errors.manager);
    QCOMPARE(modelText(root), before);
    QCOMPARE(numSignals, 0);
}

void tst_XmlExporter::nullObjectIsAnError()
{
    QCOMPARE(failedExport(nullptr, [](double) { return true; }),
             std::string("title: no object to write"));
    XmlErrors errors;
    QCOMPARE(toXml(nullptr, errors.manager), std::string());
    QCOMPARE(errors.count(), 1u);
}

void tst_XmlExporter::deadObjectIsAnError()
{
    RefT<Exporter::Context> context;
    {
        Fixed object;
        context = XmlExporter().createContext(RefT<Object>(object));
    }
    XmlErrors errors;
    Progress progress("", false);
    std::string out;
    context->export_(out, "", errors.manager, progress);
    QCOMPARE(errors.text(), std::string("no object to write"));
    QVERIFY(out.empty());
}

void tst_XmlExporter::progressRisesToTheEnd()
{
    XmlErrors errors;
    std::vector<double> parts;
    Reacting progress([&](double part) {
        parts.push_back(part);
        return true;
    });
    std::string out;
    XmlExporter().createContext(manyParts())->export_(out, "", errors.manager, progress);
    QVERIFY(parts.size() > 3);
    QVERIFY(std::is_sorted(parts.begin(), parts.end()));
    QCOMPARE(parts.back(), 1.0);
}

void tst_XmlExporter::cancelledExportLeavesTheText()
{
    for (const double end : {0.0, 0.5, 1.0})
        QCOMPARE(failedExport(manyParts(), [end](double part) { return part < end; }),
                 std::string("title: cancelled"));
}

void tst_XmlExporter::exceptionOfTheProgressIsAnError()
{
    QCOMPARE(failedExport(manyParts(), [](double) -> bool { throw std::runtime_error("oh"); }),
             std::string("title: oh"));
}

QTEST_APPLESS_MAIN(tst_XmlExporter)

#include "tst_XmlExporter.moc"
