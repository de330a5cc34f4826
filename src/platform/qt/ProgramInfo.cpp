#include "platform/qt/ProgramInfo.h"

#include <QCoreApplication>
#include <QDir>

#include <unistd.h>

namespace fldc {

QString ProgramInfo::folder() const
{
    const QString home = qEnvironmentVariable("RV4100_FLDC_HOME");
    QString folder = home.isEmpty() ? QCoreApplication::applicationDirPath()
                                    : QDir::cleanPath(QDir(home).absolutePath());
    if (folder.endsWith(u'/'))
        folder.chop(1);
    return folder;
}

QString ProgramInfo::title() const
{
    return QStringLiteral("Kelvane Download Component");
}

ProgramVersion ProgramInfo::version() const
{
    return {FLDC_VERSION_MAJOR, FLDC_VERSION_MINOR, FLDC_VERSION_REVISION};
}

std::uint64_t ProgramInfo::threadId() const
{
    return static_cast<std::uint64_t>(::gettid());
}

std::chrono::milliseconds ProgramInfo::powerCycleLimit() const
{
    bool isNumber = false;
    const int seconds = qEnvironmentVariableIntValue("RV4100_FLDC_POWER_CYCLE_S", &isNumber);
    return isNumber && seconds >= 0 ? std::chrono::seconds(seconds) : std::chrono::minutes(5);
}

} // namespace fldc
