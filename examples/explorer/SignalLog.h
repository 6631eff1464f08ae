#pragma once

#include <QPlainTextEdit>

namespace Explorer {

class PackageGraph;

/// The signals of a graph, a line each as they come.
class SignalLog : public QPlainTextEdit {
    Q_OBJECT

public:
    /// The graph isn't owned, and doesn't outlive the log.
    explicit SignalLog(PackageGraph &shownGraph, QWidget *parent = nullptr);

private:
    void write(QString const &signal, QString const &what);
};

} // namespace Explorer
