#include "zrVOMGUI/foundation/util/Log.h"

namespace ZR {

Log::~Log() = default;

void Log::add(std::string const &message)
{
    messages.push_back(message);
}

void ErrorManager::report(std::string const &message)
{
    ++errorCount;
    log.add(message);
}

Progress::~Progress() = default;

bool Progress::setDone(double)
{
    return true;
}

} // namespace ZR
