#include "support/XmlModel.h"

#include "support/QtStrings.h"

#include <QTest>

#include <random>
#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

/// A model of objects with random fields, some in circles, some linking out of it.
class RandomModel {
public:
    explicit RandomModel(unsigned seed)
        : gen(seed)
    {
        const std::size_t numObjects = 1 + below(30);
        while (objects.size() < numObjects)
            objects.push_back(newObject());
        for (RefT<Object> const &object : objects)
            fill(*object);
        // What nobody owns leaves the document; most are owned.
        for (std::size_t i = 1; i < objects.size(); ++i)
            if (below(8) != 0)
                own(*objects[below(i)], objects[i]);
    }
    ~RandomModel()
    {
        for (RefT<Object> const &object : objects)
            XmlModelEnd::letGo(object);
    }
    RandomModel(RandomModel const &) = delete;
    RandomModel &operator=(RandomModel const &) = delete;

    RefT<Object> const &root() const { return objects.front(); }

private:
    std::size_t below(std::size_t bound) { return gen() % bound; }

    RefT<Object> newObject()
    {
        const std::size_t kind = below(3);
        RefT<Object> object = kind == 0   ? RefT<Object>(new Fixed)
                              : kind == 1 ? RefT<Object>(new Thing)
                                          : RefT<Object>(new Special);
        object->setFlags(below(4) == 0 ? unsigned(gen()) : 0);
        for (std::size_t i = kind == 0 ? 0 : below(10); i > 0; --i)
            addRandomField(*object, "field" + std::to_string(below(12)));
        return object;
    }

    void addRandomField(Object &object, std::string const &name)
    {
        switch (below(7)) {
        case 0:
            addField<FieldInt>(object, name.c_str());
            break;
        case 1:
            addField<FieldReal>(object, name.c_str());
            break;
        case 2:
            addField<FieldString>(object, name.c_str());
            break;
        case 3:
            addField<FieldPtr>(object, name.c_str());
            break;
        case 4:
            addField<FieldRef>(object, name.c_str());
            break;
        case 5:
            addField<MFieldPtr>(object, name.c_str());
            break;
        default:
            addField<MFieldRef>(object, name.c_str());
            break;
        }
    }

    void fill(Object &object)
    {
        for (std::size_t i = 0; i < object.getNumFields(); ++i) {
            Field &field = *object.getField(i);
            field.setFlags(below(4) == 0 ? unsigned(gen()) : 0);
            if (auto *const number = dynamic_cast<FieldInt *>(&field))
                number->set(static_cast<int>(gen()));
            else if (auto *const real = dynamic_cast<FieldReal *>(&field))
                real->set(realOfBits((std::uint64_t(gen()) << 32) | gen()));
            else if (auto *const string = dynamic_cast<FieldString *>(&field))
                string->set(randomText());
            else if (auto *const ptr = dynamic_cast<FieldPtr *>(&field))
                ptr->set(anObject());
            else if (auto *const ref = dynamic_cast<FieldRef *>(&field))
                ref->set(anObject());
            else if (auto *const ptrs = dynamic_cast<MFieldPtr *>(&field))
                ptrs->replace(0, 0, someObjects<MFieldPtr>());
            else if (auto *const refs = dynamic_cast<MFieldRef *>(&field))
                refs->replace(0, 0, someObjects<MFieldRef>());
        }
    }

    std::string randomText()
    {
        static const std::vector<std::string> pieces{"a",
                                                     " ",
                                                     "\n",
                                                     "\t",
                                                     "\r",
                                                     "<",
                                                     "&",
                                                     "]]>",
                                                     "\"",
                                                     std::string(1, '\0'),
                                                     "\x1b",
                                                     "\xC3\xBC",
                                                     "\xF0\x9F\x98\x80",
                                                     "\xEF\xBB\xBF",
                                                     "\xEF\xBF\xBE",
                                                     "\xFF",
                                                     "\xC3"};
        const std::size_t numKnown = below(4) == 0 ? pieces.size() : 4;
        std::string text;
        for (std::size_t i = below(20); i > 0; --i)
            text += pieces[below(numKnown)];
        return text;
    }

    RefT<Object> anObject()
    {
        return below(4) == 0 ? RefT<Object>() : objects[below(objects.size())];
    }

    template <class List>
    typename List::Values someObjects()
    {
        typename List::Values values;
        for (std::size_t i = below(40); i > 0; --i)
            values.emplace_back(anObject());
        return values;
    }

    void own(Object &owner, RefT<Object> const &object)
    {
        for (std::size_t i = 0; i < owner.getNumFields(); ++i)
            if (auto *const refs = dynamic_cast<MFieldRef *>(owner.getField(i).get()))
                refs->replace(below(refs->getNum() + 1), 0, {object});
    }

    std::mt19937 gen;
    Things objects;
};

} // namespace

/// Random models, written to XML and read back, and compared field by field.
class tst_XmlRandomModels : public QObject {
    Q_OBJECT

private slots:
    void randomModelSurvives_data();
    void randomModelSurvives();
};

void tst_XmlRandomModels::randomModelSurvives_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 0; seed < 400; ++seed)
        QTest::addRow("%u", seed) << seed;
}

void tst_XmlRandomModels::randomModelSurvives()
{
    QFETCH(unsigned, seed);
    const RandomModel model(seed);
    const RefT<Object> copy = xmlRoundTrip(model.root());
    QVERIFY(copy);
    const XmlModelEnd copyEnd(copy);
    QCOMPARE(modelText(copy), modelText(model.root()));
}

QTEST_APPLESS_MAIN(tst_XmlRandomModels)

#include "tst_XmlRandomModels.moc"
