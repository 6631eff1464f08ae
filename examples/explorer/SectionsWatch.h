#pragma once

#include "PackageModel.h"

#include "zrVOMGUI/foundation/util/Signal.h"

#include <functional>

namespace Explorer {

/// Calls back whenever the list of the model's sections changes. Ends before the model.
class SectionsWatch {
public:
    SectionsWatch(PackageModel &watched, std::function<void()> const &onChange)
        : model(watched)
    {
        if (auto *const list = findList())
            connection = list->sigReplace.connect([onChange](auto const &) { onChange(); });
    }
    ~SectionsWatch() { connection.disconnect(); }
    SectionsWatch(SectionsWatch const &) = delete;
    SectionsWatch &operator=(SectionsWatch const &) = delete;

    std::vector<ZR::PtrT<ZR::VOM::Object>> getSections() const
    {
        auto *const list = findList();
        if (!list)
            return {};
        return {list->getAll().begin(), list->getAll().end()};
    }

private:
    /// Null once somebody has removed the field.
    ZR::VOM::MFieldRef *findList() const
    {
        return ZR::cast<ZR::VOM::MFieldRef>(model.getArchive()->findField("sections"));
    }

    PackageModel &model;
    ZR::Signal::Connection connection;
};

} // namespace Explorer
