#pragma once

#include <QPlainTextEdit>

namespace ZR::VOM::GUI {
class ObjectTreeView;
class ObjectView;
} // namespace ZR::VOM::GUI
namespace ZR::VOM::GUI::V1 {
class ObjectTreeView;
}
namespace ZR::VOM::GUI::V2 {
class ObjectTreeView;
}

namespace Explorer {

class PackageGraph;

/// Signals of widgets, a line each as they come.
class SignalLog : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit SignalLog(QWidget *parent = nullptr);

    /// \name Widgets to listen to, which aren't owned and don't outlive the log
    /// @{
    void watch(PackageGraph &graph);
    void watch(ZR::VOM::GUI::ObjectTreeView &tree);
    void watch(ZR::VOM::GUI::V2::ObjectTreeView &tree);
    void watch(ZR::VOM::GUI::V1::ObjectTreeView &tree);
    void watch(ZR::VOM::GUI::ObjectView &slot);
    /// @}

private:
    template <class Tree>
    void watchRows(Tree &tree);
    void write(QString const &signal, QString const &what);
};

} // namespace Explorer
