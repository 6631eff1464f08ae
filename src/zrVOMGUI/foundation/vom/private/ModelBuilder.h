#pragma once

#include "zrVOMGUI/foundation/vom/ClassRegistry.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/private/Document.h"

#include <functional>
#include <vector>

namespace ZR::VOM::Xml {

/// Makes the objects of a document.
///
/// The target comes last: until then nothing that the host knows has changed. Where the work ends
/// early, what was made goes, also circles of owners, and the target gets its old values back.
class ModelBuilder {
public:
    /// The links of `document` are resolved. Takes all by reference.
    ModelBuilder(Document const &document, ClassRegistry const &registry, Reports &reports,
                 Ticker &ticker);
    ~ModelBuilder();
    ModelBuilder(ModelBuilder const &) = delete;
    ModelBuilder &operator=(ModelBuilder const &) = delete;

    /// Fills `target`, or a new object if that is null, and returns it.
    RefT<Object> build(RefT<Object> const &target);

private:
    struct Made {
        RefT<Object> object;
        std::vector<RefT<Field>> fields; // By position in the record; null for one to be added.
    };

    void createObjects(RefT<Object> const &target);
    RefT<Object> createObject(ObjectRecord const &record);
    void matchFields();
    void matchFields(ObjectRecord const &record, Made &object);
    void fillObjects();
    void fillObject(ObjectRecord const &record, Made const &object);
    void fillField(RefT<Object> const &object, FieldRecord const &record, RefT<Field> field);
    RefT<Field> addFieldOf(RefT<Object> const &object, FieldRecord const &record);
    void askTarget();
    void fillTarget();
    void restoreTarget() noexcept;
    void dismantle() noexcept;

    template <class Item>
    void setFlags(RefT<Item> const &item, unsigned flags);
    template <class FieldType>
    auto valueOf(FieldRecord const &record) const;
    RefT<Object> const &linked(Link link) const;
    void tick();

    Document const &document;
    ClassRegistry const &registry;
    Reports &reports;
    Ticker &ticker;
    std::vector<Made> made; // By position in the document.
    bool isTargetGiven = false;
    bool isDone = false;
    double numSteps = 0, numDone = 0;

    // How a given target becomes what it was, in the order of the changes.
    bool keepsUndo = false;
    std::vector<std::function<void()>> undo;
};

} // namespace ZR::VOM::Xml
