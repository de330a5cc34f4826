#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "firmware/colFiles.h"
#include "radio/clsConfiguration.h"
#include "radio/colConfigurations.h"
#include "shared/DisplayTexts.h"
#include "shared/NumberText.h"

#include <algorithm>

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

// False, and code 54, when the number of a network or device has not the one digit that an
// erasure's identifier has room for: another memory device would be erased. Positions that are not
// there are left to the erasure.
bool allHaveMemoryIds(const colConfigurations& configurations, const QStringList& positions)
{
    const auto items = configurations.items();
    return std::ranges::all_of(positions, [&](const QString& text) {
        const auto position = readNumber(text);
        if (!position || *position < 1 || *position > configurations.Count())
            return true;
        const auto& configuration = *items[static_cast<std::size_t>(*position - 1)];
        return eraseMemoryId(configuration).size() == 4 || fail(Code::DataLength);
    });
}

} // namespace

std::int16_t clsDLManager::EraseSelected(const QString& FilesToErase, QString& strFilesToReport)
{
    std::int16_t result = 0;
    {
        const OperationScope operation;
        if (!operation.granted())
            return refusedResult;

        Session session = beginSession();
        m_teller->tell(session::OperationStarted{session::Operation::Erase});
        trap(Trap::KeepCode, [&] { eraseSteps(session, FilesToErase); });
        (void)takeResult();
        const LastError erasure = lastError();
        trap(Trap::KeepCode, [&] { rereadAfterErasure(session, strFilesToReport); });
        result = takeResult();
        closeSession(session, eraseOutcome(erasure));
        m_load.files.reset();
        tellEnded(erasure.ok() ? lastError() : erasure);
    }
    complete();
    return result;
}

// The last status line. A re-read that went well must not hide that something was not erased.
QString clsDLManager::eraseOutcome(const LastError& erasure)
{
    const LastErrorKeeper result;
    if (!erasure.ok())
        lastError() = erasure;
    return statusLine(displayText(Text::ConfigurationsErased));
}

void clsDLManager::eraseSteps(Session& session, const QString& FilesToErase)
{
    session.openLogs();
    const QStringList positions = positionTexts(FilesToErase);
    if (positions.isEmpty() && !session.radio)
        m_radio = session.radio = std::make_shared<clsRadio>();
    // Without a whole report before, nobody knows what the positions mean: nothing is sent.
    const auto known = session.model().Configurations();
    if (!positions.isEmpty() && (known->Count() == 0 || !known->complete()))
        throw PlatformFailure(FailureNumber::ObjectNotSet);
    tellChosen(*known, positions);
    if (!session.openLine())
        return;
    m_load.files = std::make_shared<colFiles>();

    clsProtocol& protocol = *session.protocol;
    if (m_uiMode)
        protocol.SetUpgradeMode(session.window().accessLevelChecked() ? 1 : 0);
    logRadioOn(session);
    if (!lastError().ok() || !allHaveMemoryIds(*known, positions))
        return;

    clsRadio& radio = session.model();
    for (const QString& text : positions) {
        const std::int32_t position = positionOf(text);
        const auto configuration = known->Item(position);
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

// Positions that are not there are left to the erasure.
void clsDLManager::tellChosen(const colConfigurations& known, const QStringList& positions) const
{
    session::ErasureChosen chosen;
    const auto items = known.items();
    for (const QString& text : positions) {
        const auto position = readNumber(text);
        if (position && *position >= 1 && *position <= known.Count())
            chosen.components.push_back(
                componentOf(*items[static_cast<std::size_t>(*position - 1)]));
    }
    m_teller->tell(std::move(chosen));
}

// Runs whatever the erasure's outcome, which the status line shows first; the operation's result is
// that of these steps, if there is a line to take them on.
void clsDLManager::rereadAfterErasure(Session& session, QString& strFilesToReport)
{
    logConfiguration(QStringLiteral("After erased..."));
    if (!session.lineOpen)
        return;
    session.window().setStatusPanelStatus(statusLine(displayText(Text::ConfigurationsErased)));
    session.window().setStatusPanelBaud({});
    session.protocol->GetConfiguration(session.window(), session.port(), session.model(),
                                       strFilesToReport);
    if (lastError().ok())
        tellConfigurations(session::Reading::After, session.model());
    if (!m_stayConnected)
        session.protocol->RestartRadio(session.window(), session.port());
}

} // namespace fldc
