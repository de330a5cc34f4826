#include "protocol/clsProtocol.h"

#include "app/services/LogState.h"
#include "app/services/SettingsStore.h"
#include "platform/Platform.h"
#include "port/IPort.h"
#include "protocol/ConfigurationKinds.h"
#include "protocol/IProtocolEvents.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/wire/FlashLayout.h"
#include "protocol/wire/Frames.h"
#include "protocol/wire/Replies.h"
#include "radio/clsRadio.h"
#include "shared/DisplayTexts.h"
#include "shared/HexText.h"
#include "shared/LastError.h"

#include <QStringList>

namespace fldc {

using namespace std::chrono_literals;

namespace {

QStringView withoutBusyWords(QStringView reply)
{
    while (reply.startsWith(QStringView(busyWord)))
        reply = reply.sliced(4);
    return reply;
}

// What stands before the word that ends the reply; nothing when no word of it does.
std::optional<QStringView> beforeDone(QStringView reply)
{
    for (qsizetype i = 0; i + 4 <= reply.size(); i += 4) {
        if (reply.sliced(i, 4) == QStringView(doneWord))
            return reply.first(i);
    }
    return std::nullopt;
}

// The data digits of the one record that a reply carries; nothing, with the last error set, when it
// is malformed.
std::optional<QString> singleRecord(QStringView reply)
{
    const auto record = beforeDone(reply);
    if (!record) {
        lastError().set(Code::DataLength);
        return std::nullopt;
    }
    return ExtractRecordData(withoutBusyWords(*record));
}

void logConfigurations(const colConfigurations& configurations)
{
    for (const auto& configuration : configurations.items())
        logConfiguration(QStringLiteral("Configuration: ") + configuration->ProductID() +
                         QStringLiteral("|Status: ") + QString::number(configuration->Status()));
}

QString reportText(const colConfigurations& configurations)
{
    QStringList records;
    for (const auto& configuration : configurations.items())
        records.append(configuration->ProductID() + u'|' +
                       QString::number(configuration->Status()) + u'|' +
                       QString::number(configuration->NetWorkID()));
    return records.join(u'\t');
}

} // namespace

void clsProtocol::GetConfiguration(IProtocolWindow& UIForm, IPort& port, clsRadio& radio,
                                   QString& strFiles)
{
    UIForm.ResetProgessBar();
    m_events.onDownloadProgress(0, {}, 0);
    UIForm.setStatusPanelStatus(displayText(Text::ReadingConfiguration));
    if (!SendCommand(port, 12000ms, Command::ReportConfiguration, {}, &radio))
        return;

    const auto configurations = radio.Configurations();
    const bool debug = ReadSetting(m_platform.settings, debugSetting, settingOff) == settingOn;
    if (ClassifyConfigurations(*configurations, debug))
        m_upgrade.blnF1KeyRequired = true;
    UIForm.UpdateLabels(*configurations, m_upgrade.blnF1KeyRequired);
    logConfigurations(*configurations);
    if (!UIForm.UIDisplay())
        strFiles = reportText(*configurations);
}

// A read brings one record, behind busy words perhaps; the last one brings the done word alone.
bool clsProtocol::ParseConfigurationReply(colConfigurations& configurations)
{
    QStringView rest = withoutBusyWords(strReply);
    while (!rest.isEmpty() && rest.size() != 4) {
        const qsizetype words = readHex(rest.mid(2, 2)).value_or(0);
        const QStringView record = rest.left(8 + 4 * words);
        const auto data = ExtractRecordData(record);
        if (!data)
            return false;
        configurations.Add(*data, {});
        rest = withoutBusyWords(rest.sliced(record.size()));
    }
    return true;
}

void clsProtocol::GetFlashBlocks(IPort& port, clsRadio& radio)
{
    // A radio that does not know its regions lists every block.
    if (!SendCommand(port, 2000ms, Command::ReportFlashRegions, {}, &radio))
        (void)SendCommand(port, 2000ms, Command::ReportFlashStructure, {}, &radio);
}

bool clsProtocol::ReadFlashStructure(colFlashBlocks& blocks, Command command)
{
    const auto data = singleRecord(strReply);
    if (!data)
        return false;
    return command == Command::ReportFlashRegions ? ParseFlashRegions(blocks, *data)
                                                  : ParseFlashStructure(blocks, *data);
}

bool clsProtocol::ReportFlashData()
{
    const auto data = singleRecord(strReply);
    if (!data)
        return false;
    logDownload(*data);
    return true;
}

} // namespace fldc
