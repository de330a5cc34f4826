#include "app/services/LogFiles.h"

#include "platform/IClock.h"
#include "platform/IFileService.h"
#include "platform/IProgramInfo.h"
#include "platform/Platform.h"
#include "platform/PlatformFailure.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace fldc {

namespace {

constexpr int highestNumber = std::numeric_limits<std::int16_t>::max();

} // namespace

LogPaths chooseLogPaths(const Platform& platform)
{
    const QString folder = platform.program.logFolder() + u'\\';
    for (int number = 0; number <= highestNumber; ++number) {
        const QString stem = folder + QString::number(number);
        const LogPaths paths{stem + QStringLiteral("_Download.log"),
                             stem + QStringLiteral("_Config.log")};
        // Both are looked at, so that both are moved aside when they are old.
        const bool downloadUsable = CheckLogFile(platform, paths.download);
        const bool configurationUsable = CheckLogFile(platform, paths.configuration);
        if (downloadUsable && configurationUsable)
            return paths;
    }
    throw PlatformFailure(FailureNumber::Overflow);
}

bool CheckLogFile(const Platform& platform, const QString& strPath)
{
    try {
        if (!platform.files.exists(strPath))
            return true;
        platform.files.checkWritable(strPath);
        if (FileIsOld(platform, strPath))
            BackupOldLogFile(platform, strPath);
        return true;
    } catch (...) {
        return false;
    }
}

bool FileIsOld(const Platform& platform, const QString& strPath)
{
    return platform.files.lastModified(strPath) != platform.clock.now().date();
}

void BackupOldLogFile(const Platform& platform, const QString& strPath)
{
    const qsizetype name = std::max(strPath.lastIndexOf(u'\\'), strPath.lastIndexOf(u'/')) + 1;
    const QString backup = strPath.first(name) + QStringLiteral("old_") + strPath.sliced(name);
    if (platform.files.exists(backup))
        platform.files.remove(backup);
    platform.files.copy(strPath, backup);
    platform.files.remove(strPath);
}

} // namespace fldc
