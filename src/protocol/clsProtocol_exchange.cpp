#include "protocol/clsProtocol.h"

#include "app/services/LogState.h"
#include "port/IPort.h"
#include "protocol/HardwareStrings.h"
#include "protocol/record/CommandRecord.h"
#include "protocol/wire/Frames.h"
#include "protocol/wire/Replies.h"
#include "radio/clsRadio.h"
#include "shared/HexText.h"
#include "shared/LastError.h"

namespace fldc {

namespace {

constexpr int maximumAttempts = 3;

// A radio has a handful of configurations; one that reports without end is not believed.
constexpr std::int32_t maximumConfigurations = 1000;

bool isRecordHeader(std::uint32_t byte)
{
    return std::ranges::find(recordHeaders, byte) != recordHeaders.end();
}

} // namespace

clsProtocol::clsProtocol(Platform& platform, IProtocolEvents& events, IWaitDialogFactory& dialogs,
                         std::shared_ptr<const session::Teller> teller)
    : m_platform(platform), m_events(events), m_dialogs(dialogs), m_teller(std::move(teller))
{
}

bool clsProtocol::SendCommand(IPort& port, milliseconds timeout, Command command,
                              const QByteArray& bytData, clsRadio* radio)
{
    lastError().clear();
    const auto frame = buildFrame(command, bytData);
    if (!frame)
        return false;

    const QString trace =
        QStringLiteral("Command (") + QString::fromUtf16(nameOf(command)) + QStringLiteral(") ': ");
    for (int attempt = 1; attempt <= maximumAttempts; ++attempt) {
        blnRetry = false;
        logDownload(trace);
        port.WriteBinary(*frame);
        if (!lastError().ok())
            return false;
        m_lastFrame = *frame;
        tellSent(*m_teller, command);
        if (timeout.count() == 0)
            return true;

        const bool answered = command == Command::ReportConfiguration && radio != nullptr
                                  ? readConfigurations(port, timeout, *radio)
                                  : readReply(port, timeout);
        tellAnswered(*m_teller, command, bytData);
        if (answered)
            return takeRecord(command, radio);
        if (!blnRetry)
            return false;
        if (attempt < maximumAttempts)
            tellRepeated(*m_teller, command, attempt + 1);
    }
    return false;
}

bool clsProtocol::readReply(IPort& port, milliseconds timeout, bool* terminated)
{
    strReply = port.ReadBinary(static_cast<std::int16_t>(timeout.count()),
                               QString::fromUtf16(doneWord), terminated);
    if (!lastError().ok())
        return false;
    // A record of configurations ends the reading too, but confirms no other command.
    const bool ended = terminated != nullptr || strReply.endsWith(QStringView(doneWord));
    if (CheckReply() && (ended || fail(Code::UnknownRadioError)))
        return true;
    if (lastError().code() == Code::UnknownRadioError)
        tellUnreadable(*m_teller, strReply, m_lastFrame);
    return false;
}

bool clsProtocol::readConfigurations(IPort& port, milliseconds timeout, clsRadio& radio)
{
    const auto configurations = std::make_shared<colConfigurations>();
    radio.setConfigurations(configurations);
    bool terminated = false;
    while (!terminated) {
        if (!readReply(port, timeout, &terminated))
            return false;
        if (!ParseConfigurationReply(*configurations))
            return false;
        if (configurations->Count() > maximumConfigurations)
            return fail(Code::ConfigurationListTooLong);
    }
    AssignHardwareStrings(*configurations);
    configurations->setComplete();
    return true;
}

// What a successful reply carries beyond its acknowledgement.
bool clsProtocol::takeRecord(Command command, clsRadio* radio)
{
    const bool isStructure =
        command == Command::ReportFlashStructure || command == Command::ReportFlashRegions;
    if (isStructure && radio != nullptr) {
        const auto blocks = std::make_shared<colFlashBlocks>();
        radio->setFlashBlocks(blocks);
        return ReadFlashStructure(*blocks, command);
    }
    if (command == Command::FlashId || command == Command::FlashOtp)
        return ReportFlashData();
    return true;
}

bool clsProtocol::CheckReply()
{
    blnRetry = false;
    blnFlashLocked = false;

    const QStringView first = QStringView(strReply).left(4);
    lastError().clear();
    if (first == QStringView(doneWord))
        return true;
    if (first == QStringView(busyWord))
        return checkBusyList();

    const auto word = readHex(first);
    if (!word)
        return fail(Code::UnknownRadioError);
    const auto* fault = std::ranges::find(faults, *word, &Fault::word);
    if (fault == faults.end())
        return isRecordHeader(*word >> 8U) || fail(Code::UnknownRadioError);

    blnRetry = fault->repeat;
    blnFlashLocked = fault->code == Code::FlashLocked;
    lastError().set(fault->code);
    return lastError().ok();
}

// A reply to a command for several blocks: a busy word for each block done, a fault word for each
// that failed. A record behind busy words ends the list.
bool clsProtocol::checkBusyList()
{
    QString positions;
    int position = 0;
    for (qsizetype i = 0; i < strReply.size(); i += 4, ++position) {
        const QStringView word = QStringView(strReply).mid(i, 4);
        if (word == QStringView(doneWord) || word == QStringView(busyWord))
            continue;
        const QStringView header = word.left(2);
        if (header == u"49" || header == u"46" || header == u"43")
            return true;
        positions += QString::number(position).rightJustified(2, u'0').right(2);
    }
    if (positions.isEmpty())
        return true;
    logDownload(QStringLiteral("Error (Block id in position ") + positions + QStringLiteral(")"));
    blnRetry = true;
    return fail(Code::FlashBlocks);
}

} // namespace fldc
