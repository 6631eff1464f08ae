#include "ModelFile.h"

#include "PackageXml.h"

#include <QFile>
#include <QSaveFile>

namespace Explorer {

namespace {

QString firstOf(std::vector<std::string> const &messages)
{
    constexpr std::size_t maxMessages = 10;
    QStringList lines;
    for (std::size_t i = 0; i < messages.size() && i < maxMessages; ++i)
        lines << QString::fromStdString(messages[i]);
    return lines.join('\n');
}

} // namespace

bool writeModel(PackageModel const &model, QString const &path, QString &error)
{
    std::vector<std::string> messages;
    const std::string xml = saveModel(model, messages);
    if (xml.empty()) {
        error = firstOf(messages);
        return false;
    }
    QSaveFile file(path);
    const auto size = static_cast<qint64>(xml.size());
    if (file.open(QIODevice::WriteOnly) && file.write(xml.data(), size) == size && file.commit())
        return true;
    error = file.errorString();
    return false;
}

std::shared_ptr<PackageModel> readModel(QString const &path, QString &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return nullptr;
    }
    std::vector<std::string> messages;
    const ZR::RefT<Archive> archive = openModel(file.readAll().toStdString(), messages);
    if (archive)
        return std::make_shared<PackageModel>(archive);
    error = firstOf(messages);
    return nullptr;
}

} // namespace Explorer
