#include "platform/qt/ProgramInfo.h"

#include "platform/qt/FileDescriptor.h"

#include <QCoreApplication>
#include <QDir>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <array>

namespace fldc {

namespace {

const auto packageName = QStringLiteral("rv4100-fldc");

QString homeOfEnvironment()
{
    return qEnvironmentVariable("RV4100_FLDC_HOME");
}

bool installed()
{
    return homeOfEnvironment().isEmpty() &&
           QCoreApplication::applicationDirPath().endsWith(u"/lib/" + packageName);
}

// A relative path in the variable does not count: it would be another folder for each program.
QString stateFolder()
{
    const QString named = qEnvironmentVariable("XDG_STATE_HOME");
    return QDir::isAbsolutePath(named) ? QDir::cleanPath(named)
                                       : QDir::homePath() + QStringLiteral("/.local/state");
}

} // namespace

QString ProgramInfo::folder() const
{
    const QString home = homeOfEnvironment();
    QString folder = home.isEmpty() ? QCoreApplication::applicationDirPath()
                                    : QDir::cleanPath(QDir(home).absolutePath());
    if (folder.endsWith(u'/'))
        folder.chop(1);
    return folder;
}

QString ProgramInfo::logFolder() const
{
    if (!installed())
        return folder();
    // When it can't be made, opening the log fails and says so.
    const QDir state(stateFolder());
    if (state.mkpath(QStringLiteral(".")))
        (void)state.mkdir(packageName, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return state.filePath(packageName);
}

QStringList ProgramInfo::bootFolders() const
{
    if (!installed())
        return {folder()};
    return {QStringLiteral("/var/lib/") + packageName, folder()};
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

bool ProgramInfo::screenPresent() const
{
    // A property, because only programs with windows link the library that knows it.
    static const QStringList invisible{QStringLiteral("offscreen"), QStringLiteral("minimal"),
                                       QStringLiteral("minimalegl")};
    const QCoreApplication* application = QCoreApplication::instance();
    const QString platform =
        application ? application->property("platformName").toString() : QString();
    return !platform.isEmpty() && !invisible.contains(platform);
}

bool ProgramInfo::userAtTerminal() const
{
    return std::ranges::any_of(std::array{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO},
                               inForegroundOf);
}

std::chrono::milliseconds ProgramInfo::powerCycleLimit() const
{
    bool isNumber = false;
    const int seconds = qEnvironmentVariableIntValue("RV4100_FLDC_POWER_CYCLE_S", &isNumber);
    return isNumber && seconds >= 0 ? std::chrono::seconds(seconds) : std::chrono::minutes(5);
}

} // namespace fldc
