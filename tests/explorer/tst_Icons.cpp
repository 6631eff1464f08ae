#include "Icons.h"

#include "PackageModel.h"

#include <QTest>

#include <set>

using namespace Explorer;
using ZR::RefT;
using ZR::VOM::GUI::ObjectIconDB;

class tst_Icons : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void packagesShowTheirPriority();
    void unknownPriorityFallsBackToTheClass();
    void othersShowTheirClass();
    void classRuleIgnoresPriorities();
    void noRuleHasNoDatabase();
    void legendTellsEachIconOnce();
    void iconsAreSharpAtEverySize();
    void disabledIconsAreGray();

private:
    RefT<ZR::VOM::Object> makePackage(char const *priority) const
    {
        PackageRecord record;
        record.priority = priority;
        return new Package(record, {});
    }
    static QImage picture(QIcon const &icon, QIcon::Mode mode = QIcon::Normal)
    {
        return icon.pixmap(QSize(32, 32), mode).toImage();
    }
    RefT<ObjectIconDB> byPriority, byClass;
};

void tst_Icons::initTestCase()
{
    byPriority = makeIconDB(IconRule::ByPriority);
    byClass = makeIconDB(IconRule::ByClass);
}

void tst_Icons::packagesShowTheirPriority()
{
    std::set<qint64> keys;
    for (char const *priority : {"required", "important", "standard", "optional", "extra"})
        keys.insert(byPriority->find(makePackage(priority)).cacheKey());
    QCOMPARE(keys.size(), std::size_t(5));
    QVERIFY(picture(byPriority->find(makePackage("required"))) !=
            picture(byPriority->find(makePackage("extra"))));
}

void tst_Icons::unknownPriorityFallsBackToTheClass()
{
    const QIcon icon = byPriority->find(makePackage("urgent"));
    QVERIFY(!icon.isNull());
    QCOMPARE(picture(icon), picture(byClass->find(makePackage("required"))));
}

void tst_Icons::othersShowTheirClass()
{
    const Objects objects = {new Section("s", {}), new Maintainer("m"), new Details("d"),
                             makePackage("")};
    std::set<qint64> keys;
    for (RefT<ZR::VOM::Object> const &object : objects) {
        QCOMPARE(picture(byPriority->find(object)), picture(byClass->find(object)));
        keys.insert(byClass->find(object).cacheKey());
    }
    QCOMPARE(keys.size(), objects.size());
    QVERIFY(byClass->find(new Item("plain")).isNull());
}

void tst_Icons::classRuleIgnoresPriorities()
{
    QCOMPARE(byClass->find(makePackage("required")).cacheKey(),
             byClass->find(makePackage("extra")).cacheKey());
}

void tst_Icons::noRuleHasNoDatabase()
{
    QVERIFY(!makeIconDB(IconRule::None));
    QVERIFY(iconLegend(IconRule::None).empty());
}

void tst_Icons::legendTellsEachIconOnce()
{
    for (const auto &[rule, number] :
         {std::pair(IconRule::ByPriority, 8), {IconRule::ByClass, 4}}) {
        std::set<QString> meanings;
        for (auto const &[icon, meaning] : iconLegend(rule)) {
            QVERIFY(!icon.isNull());
            meanings.insert(meaning);
        }
        QCOMPARE(int(meanings.size()), number);
        QCOMPARE(int(iconLegend(rule).size()), number);
    }
}

void tst_Icons::iconsAreSharpAtEverySize()
{
    const QIcon icon = windowIcon();
    for (const int edge : {1, 7, 16, 24, 48, 256}) {
        const QPixmap pixmap = icon.pixmap(edge, edge);
        QCOMPARE(pixmap.size(), QSize(edge, edge));
    }
    // Painted at its size and not blown up: the corners stay clear, and the middle doesn't.
    const QImage image = icon.pixmap(256, 256).toImage();
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
    QCOMPARE(qAlpha(image.pixel(60, 180)), 255);
}

void tst_Icons::disabledIconsAreGray()
{
    const QImage image = picture(windowIcon(), QIcon::Disabled);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(QColor(image.pixel(x, y)).saturation(), 0);
    QVERIFY(QColor(picture(windowIcon()).pixel(8, 24)).saturation() > 0);
}

QTEST_MAIN(tst_Icons)
#include "tst_Icons.moc"
