#include "fldc/radio/RadioRun.h"

#include "app/services/LogState.h"
#include "app/services/clsLogFile.h"
#include "fldc/commands/Command.h"
#include "fldc/files/InputFiles.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "platform/PlatformFailure.h"
#include "ui/logic/DownloadWindow.h"

#include <QDir>
#include <QFile>

#include <utility>

namespace fldc::cli {

using namespace Qt::StringLiterals;

RadioRun::RadioRun(Context& context, const QString& device,
                   QHash<QString, std::int32_t> fileOfImage)
    : m_context(context), m_events(context.platform.events, [this] { endIfWanted(); }),
      m_radioPlatform(context.platform, m_events, context.options, device,
                      [this](const QString& why) { m_context.output.terminal().note(why); }),
      m_record({context.output, context.outputLoss, std::move(fileOfImage), context.wantsEnd,
                [this] { endIfWanted(); }})
{
    m_manager = std::make_unique<clsDLManager>(m_radioPlatform.platform(),
                                               static_cast<IDownloadWindowFactory&>(*this),
                                               static_cast<IWaitDialogFactory&>(*this));
    m_manager->addListener(m_record);
}

RadioRun::~RadioRun()
{
    m_manager->removeListener(m_record);
    m_manager->ShutDownUiLessMode();
}

std::shared_ptr<IDownloadWindow> RadioRun::createWindow()
{
    return std::make_shared<DownloadWindow>(m_radioPlatform.platform(), nullptr);
}

void RadioRun::endIfWanted()
{
    if (m_manager && m_context.wantsEnd())
        m_manager->cancelOperation();
}

std::optional<Outcome> RadioRun::openLog()
{
    const auto& name = m_context.options.log;
    if (!name)
        return std::nullopt;
    const QString path =
        QDir().absoluteFilePath(QFile::decodeName(QByteArray::fromStdString(*name)));
    try {
        m_context.files.openForAppending(path)->close();
    } catch (const PlatformFailure& failed) {
        return failure(Exit::File, Code::Success, failed.description(),
                       u"Name a log file that can be written."_s);
    }
    // One file for both logs, in the order of what happens.
    const auto log = std::make_shared<clsLogFile>(m_radioPlatform.platform());
    log->setFileName(path);
    logState().download = log;
    logState().configuration = log;
    logState().enabled = true;
    return std::nullopt;
}

} // namespace fldc::cli
