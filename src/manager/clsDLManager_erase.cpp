#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "firmware/colFiles.h"
#include "radio/clsConfiguration.h"
#include "radio/colConfigurations.h"
#include "shared/DisplayTexts.h"
#include "shared/NumberText.h"

namespace fldc {

namespace {

// The elements of "2|5|"; one separator at the end is ignored.
QStringList positionTexts(const QString& list)
{
    const QString positions = list.endsWith(u'|') ? list.chopped(1) : list;
    return positions.isEmpty() ? QStringList() : positions.split(u'|');
}

std::int32_t positionOf(const QString& text)
{
    if (const auto position = readNumber(text))
        return *position;
    throw PlatformFailure(FailureNumber::TypeMismatch);
}

// The memory device of an erasure is named by decimal numbers, unlike that of a download.
QString eraseMemoryId(const clsConfiguration& configuration)
{
    return u'0' + QString::number(configuration.NetWorkID()) + u'0' +
           QString::number(configuration.DeviceID());
}

} // namespace

std::int16_t clsDLManager::EraseSelected(const QString& FilesToErase, QString& strFilesToReport)
{
    const OperationScope operation;
    if (!operation.granted())
        return refusedResult;

    Session session = beginSession();
    trap(Trap::KeepCode, [&] { eraseSteps(session, FilesToErase); });
    (void)takeResult();
    trap(Trap::KeepCode, [&] { rereadAfterErasure(session, strFilesToReport); });
    const std::int16_t result = takeResult();
    closeSession(session, statusLine(displayText(Text::ConfigurationsErased)));
    m_files.reset();
    return result;
}

void clsDLManager::eraseSteps(Session& session, const QString& FilesToErase)
{
    session.openLogs();
    const QStringList positions = positionTexts(FilesToErase);
    if (positions.isEmpty() && !session.radio)
        m_radio = session.radio = std::make_shared<clsRadio>();
    // Without a report before, nobody knows what the positions mean: nothing is sent.
    (void)session.model();
    session.port().OpenPort();
    m_files = std::make_shared<colFiles>();

    clsProtocol& protocol = *session.protocol;
    if (m_uiMode)
        protocol.SetUpgradeMode(session.window().accessLevelChecked() ? 1 : 0);
    logRadioOn(session);
    if (!lastError().ok())
        return;

    for (const QString& text : positions) {
        const std::int32_t position = positionOf(text);
        clsRadio& radio = session.model();
        const auto configuration = radio.Configurations()->Item(position);
        protocol.AuthoriseSetMemory(session.port(), configuration->ProductID(),
                                    eraseMemoryId(*configuration), configuration->NetWorkID() == 0);
        if (!lastError().ok())
            return;
        protocol.GetFlashBlocks(session.port(), radio);
        if (!lastError().ok())
            return;
        protocol.EraseFlashBlock(session.window(), session.port(), radio, position);
        if (!lastError().ok())
            return;
    }
}

// Runs whatever the erasure's outcome, which the status line shows first; the operation's result is
// that of these steps.
void clsDLManager::rereadAfterErasure(Session& session, QString& strFilesToReport)
{
    logConfiguration(QStringLiteral("After erased..."));
    session.window().setStatusPanelStatus(statusLine(displayText(Text::ConfigurationsErased)));
    session.window().setStatusPanelBaud({});
    session.protocol->GetConfiguration(session.window(), session.port(), session.model(),
                                       strFilesToReport);
    if (!m_stayConnected)
        session.protocol->RestartRadio(session.window(), session.port());
}

} // namespace fldc
