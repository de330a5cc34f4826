#include "manager/FileOrder.h"
#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "app/services/SettingsStore.h"
#include "firmware/SRecordReader.h"
#include "firmware/clsFile.h"
#include "firmware/colFiles.h"
#include "platform/IClock.h"
#include "platform/IEvents.h"
#include "platform/IFileService.h"
#include "port/Cancellation.h"
#include "shared/DisplayTexts.h"

#include <utility>

namespace fldc {

std::int16_t clsDLManager::LoadFiles(const QString& FilesToDL)
{
    return LoadFilesEx(FilesToDL, QString(QChar::Null));
}

std::int16_t clsDLManager::LoadFilesEx(const QString& FilesToDL, const QString& strSeparator)
{
    return loadPaths(SplitFileList(FilesToDL, strSeparator), m_uiMode);
}

void clsDLManager::LoadFilesByPath(const QString& strFilePaths, const QString& strSeparator)
{
    (void)loadPaths(splitPaths(strFilePaths, strSeparator), false);
}

std::int16_t clsDLManager::loadPaths(const QStringList& paths, bool rememberFirst)
{
    std::int16_t result = 0;
    {
        const OperationScope operation;
        if (!operation.granted())
            return refusedResult;

        Session session = beginSession();
        Q_EMIT LoadBegun();
        trap(Trap::ReplaceCode, [&] { loadSteps(session, paths, rememberFirst); });
        result = takeResult();
        m_loadCode = lastError().code();
        showOutcome(session, statusLine(displayText(Text::Ready)));
        closeLogs(session);
        m_ended = {result, lastError().description()};
    }
    EndAsyncTask(eLoadFiles, {});
    complete();
    return result;
}

// The code left is that of the last file: a file that is missing earlier in the list is only left
// out.
void clsDLManager::loadSteps(Session& session, const QStringList& paths, bool rememberFirst)
{
    session.openDownloadLog();
    const auto files = std::make_shared<colFiles>();
    const Load before = std::exchange(m_load, {files, paths, {}});
    if (rememberFirst)
        WriteSetting(m_platform.settings, lastFileSetting, paths.value(0));
    for (qsizetype number = 0; number < paths.size(); ++number) {
        const QString& path = paths.at(number);
        session.window().setStatusPanelStatus(displayText(Text::ValidatingFile));
        QString reason = formatMessage(static_cast<std::int32_t>(Code::FileDoesNotExist));
        if (m_platform.files.exists(path))
            reason = readFile(path, files, servingPace(number, paths.size()));
        else
            lastError().set(Code::FileDoesNotExist);
        if (!lastError().ok())
            Q_EMIT FileNotLoaded(path, reason);
        if (m_cancellation->requested()) {
            lastError().set(Code::UserCancelled);
            return restore(before);
        }
    }
    if (lastError().ok())
        OrderFilesForDownload(*files);
}

// What a cancelled load has read can't stand for its list. The files before it stay to be seen; a
// download writes neither (mayBeWritten).
void clsDLManager::restore(const Load& before)
{
    m_load.files->setHasRejected();
    if (before.files)
        m_load = before;
}

void clsDLManager::ValidFile(const QString& strFileName)
{
    {
        const OperationScope operation;
        if (!operation.granted())
            return;
        if (!m_load.files)
            throw PlatformFailure(FailureNumber::ObjectNotSet);
        m_cancellation->reset();
        claimOperation(m_cancellation);
        Q_EMIT LoadBegun();
        m_load.paths.append(strFileName);
        readFile(strFileName, m_load.files, servingPace());
        m_ended = {takeResult(), lastError().description()};
    }
    complete();
}

// Serves events every few milliseconds. What the served calls do to the last error is not seen.
Pace clsDLManager::servingPace(qsizetype file, qsizetype files)
{
    constexpr std::chrono::milliseconds interval{10};
    constexpr int whole = 100;
    return [this, file, files, interval, told = -1,
            last = m_platform.clock.monotonic()](double share) mutable {
        if (m_platform.clock.monotonic() - last >= interval) {
            const LastErrorKeeper loadsOwn;
            const double all = (static_cast<double>(file) + share) / static_cast<double>(files);
            const int percent = static_cast<int>(whole * all);
            if (percent != std::exchange(told, percent))
                Q_EMIT LoadAdvanced(percent);
            m_platform.events.processPending();
            last = m_platform.clock.monotonic();
        }
        return !m_cancellation->requested();
    };
}

// Adds the images of one file. What makes a file not valid is returned, and stands in the log with
// its line.
QString clsDLManager::readFile(const QString& path, const std::shared_ptr<colFiles>& files,
                               const Pace& pace)
{
    const bool best = ReadSetting(m_platform.settings, compressionSetting, {}) == settingBest;
    const Compression compression =
        m_compression.value_or(best ? Compression::Best : Compression::Zlib);
    SRecordReader reader(m_platform.files, files, compression, pace);
    const bool isOfList = files == m_load.files; // and no boot application, which a radio waits for
    if (m_hashesFiles && isOfList)
        reader.hashContent();
    const auto notValid = reader.read(path);
    if (const auto& hash = reader.contentHash())
        m_load.hashes.insert(path, *hash);
    if (!notValid)
        return {};
    logDownload(path + QStringLiteral(": ") + notValid->text());
    return notValid->text();
}

} // namespace fldc
