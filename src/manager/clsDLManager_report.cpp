#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "firmware/colFiles.h"
#include "shared/DisplayTexts.h"

namespace fldc {

std::int16_t clsDLManager::ReportConfigurations(QString& strFiles)
{
    std::int16_t result = 0;
    {
        const OperationScope operation;
        if (!operation.granted())
            return refusedResult;

        Session session = beginSession();
        m_teller->tell(session::OperationStarted{session::Operation::Report});
        trap(Trap::KeepCode, [&] { reportSteps(session, strFiles); });
        result = takeResult();
        closeSession(session, statusLine(displayText(Text::ConfigurationRead)));
        m_load.files.reset();
        tellEnded(lastError());
    }
    EndAsyncTask(eReportConfigurations, strFiles);
    complete();
    return result;
}

void clsDLManager::reportSteps(Session& session, QString& strFiles)
{
    session.openLogs();
    if (!session.openLine())
        return; // what is known of the radio stays known
    m_radio = session.radio = std::make_shared<clsRadio>();
    m_load.files = std::make_shared<colFiles>();

    session.protocol->SetUpgradeMode(0);
    logRadioOn(session);
    if (!lastError().ok())
        return;

    logConfiguration(QStringLiteral("Report Configurations..."));
    session.protocol->GetConfiguration(session.window(), session.port(), *session.radio, strFiles);
    if (lastError().ok())
        tellConfigurations(session::Reading::Report, *session.radio);
    if (lastError().ok() && !m_stayConnected)
        session.protocol->RestartRadio(session.window(), session.port());
}

} // namespace fldc
