#pragma once

#include "protocol/UpgradeState.h"
#include "protocol/wire/Commands.h"
#include "session/Listener.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>

namespace fldc {

class IPort;
class IProtocolEvents;
class IProtocolWindow;
class IWaitDialogFactory;
class clsFile;
class colDataBlocks;
class colDefTables;
class TargetRecord;
class clsRadio;
class colConfigurations;
class colFlashBlocks;

struct Platform;

/// Speaks the radio's command protocol. Each public member runs one complete conversation through
/// the port and reports its outcome in the last error; the code that each records beyond those of
/// the port (IPort.h) and the fault words of the radio (Replies.h) is named with it.
///
/// How one exchange goes: the frame is written, then words are read up to the acknowledgement AF AF
/// or the end of a record. Busy words AE AE before it buy time. A fault word becomes its code; for
/// those that a disturbed line explains, the frame is sent again, three times in all. What a
/// conversation does about a code that is left is written in the conversation and nowhere else.
///
/// The speed at which the radio was last known to answer outlives the conversations: what fails at
/// another speed goes back to it.
///
/// Owned by the manager; one object per manager, because the speed and the upgrade mode are those
/// of one radio. Only an operation calls it, and never two at once.
///
/// Conversations pump events while they wait. The caller keeps window, port and model alive
/// meanwhile. The port stays open in every case.
class clsProtocol {
public:
    /// @p teller: whom the conversations tell what they do to the radio.
    clsProtocol(
        Platform& platform, IProtocolEvents& events, IWaitDialogFactory& dialogs,
        std::shared_ptr<const session::Teller> teller = std::make_shared<session::Teller>());

    // -- Line speed (clsProtocol_speed.cpp)

    /// Raises the line speed as the entry @p intListIndex of the window's baud-rate list says
    /// ("Auto", "115200", "19200", "9600", "57600"). Code 56 when no speed could be agreed on.
    void NegotiateBaud(IProtocolWindow& UIForm, IPort& port, std::int32_t intListIndex);
    /// Tries every speed, slowest first so that a radio lost at one has been heard at those below,
    /// with @p rounds exchanges of the shortest frames there are, and tells a LinkMeasured for
    /// each. Nothing but Set Baud Rate and Confirm Ready is sent. An error is left (42, or the
    /// port's) when the radio no longer answers.
    void TestLink(IProtocolWindow& UIForm, IPort& port, std::int32_t rounds);
    /// Line speed in decimal at which the radio was last known to answer.
    [[nodiscard]] QString PreviousBaudRate() const { return m_previousBaudRate; }
    void setPreviousBaudRate(const QString& speed) { m_previousBaudRate = speed; }

    // -- Upgrade mode (clsProtocol_upgrade.cpp)

    /// 0: normal log-on; anything else: special log-on after a power cycle.
    void SetUpgradeMode(std::int16_t Value);
    /// What the next log-on goes by, and what the last one or the last query found out.
    [[nodiscard]] const UpgradeState& upgradeState() const { return m_upgrade; }
    /// Resets the radio and logs it on at 19200 baud. On success @p blnUARequired says whether the
    /// upgrade application must be sent and @p strUAFile is then its path. @p blnUIMode: a user is
    /// present. Codes 1 (given up), 21, 22, 42, 9011.
    void LogRadioIntoUpgradeMode(IProtocolWindow& UIForm, IPort& port, QString& strUAFile,
                                 bool& blnUARequired, bool blnUIMode);
    /// Sends the boot application @p objFile byte by byte.
    void SendUpgradeApplication(IProtocolWindow& UIForm, IPort& port, const clsFile& objFile);
    /// Restarts a radio of which nothing is known: by the reset byte at 19200 and 9600 baud, or out
    /// of upgrade mode at whatever speed. Codes 42 (silent at all of them), 21.
    void RestartFromAnyState(IProtocolWindow& UIForm, IPort& port);

    // -- Queries (clsProtocol_queries.cpp)

    /// Reads the configurations into @p radio, classifies and shows them, and logs them. Without a
    /// user @p strFiles receives one "product|status|network" per configuration, separated by tabs.
    void GetConfiguration(IProtocolWindow& UIForm, IPort& port, clsRadio& radio, QString& strFiles);
    /// Reads the flash layout into @p radio.
    void GetFlashBlocks(IPort& port, clsRadio& radio);

    // -- Flash (clsProtocol_flash.cpp)

    /// Erases the flash block of the configuration at position @p intIndex (from 1) of @p radio.
    /// Code 8201, and nothing sent, when its address lies in no block. Throws PlatformFailure
    /// (invalid argument) for a position that it has not.
    void EraseFlashBlock(IProtocolWindow& UIForm, IPort& port, clsRadio& radio,
                         std::int32_t intIndex);
    /// Unlocks, erases and writes the blocks that @p CurrentFile touches and locks them again.
    /// @p lngIndex is the file's number for the progress event. Codes 52, 53 (also for data that
    /// were not read to their end), 54 (see PadPlacement.h), 8201; of these, all but a 53 in the
    /// middle of the data come before anything is sent.
    void WriteDataToFlash(IProtocolWindow& UIForm, IPort& port, const clsFile& CurrentFile,
                          const colFlashBlocks& FlashBlocks, std::int32_t lngIndex);

    // -- Authorisation and restart (clsProtocol_authorise.cpp)

    /// Tells the radio which component (@p strJNum) comes for which memory device (@p strMemId, hex
    /// text). @p blnDeviceSet: the memory target is selected already.
    void AuthoriseSetMemory(IPort& port, const QString& strJNum, const QString& strMemId,
                            bool blnDeviceSet);
    /// Sets the memory target back to 0000.
    void CloseAllTunnels(IPort& port);
    /// Restarts the radio and waits for it to come up. Code 21.
    void RestartRadio(IProtocolWindow& UIForm, IPort& port);

private:
    using milliseconds = std::chrono::milliseconds;

    // Exchange (clsProtocol_exchange.cpp). Each returns true when the last error is 0.
    [[nodiscard]] bool SendCommand(IPort& port, milliseconds timeout, Command command,
                                   const QByteArray& bytData = {}, clsRadio* radio = nullptr);
    [[nodiscard]] bool readReply(IPort& port, milliseconds timeout, bool* terminated = nullptr);
    [[nodiscard]] bool readConfigurations(IPort& port, milliseconds timeout, clsRadio& radio);
    [[nodiscard]] bool takeRecord(Command command, clsRadio* radio);
    [[nodiscard]] bool CheckReply();
    [[nodiscard]] bool checkBusyList();

    // Line speed
    [[nodiscard]] bool ChangeBaudRate(IProtocolWindow& UIForm, IPort& port,
                                      const QString& strSpeed);
    [[nodiscard]] bool returnToPreviousSpeed(IProtocolWindow& UIForm, IPort& port);
    [[nodiscard]] bool confirmReady(IPort& port);
    [[nodiscard]] bool measureLink(IPort& port, std::int32_t rounds, session::LinkMeasured& link);

    // Upgrade mode
    void ResetAndWaitForRadio(IPort& port, bool& blnUARequired, bool& blnInUpgradeMode,
                              bool blnUIMode);
    [[nodiscard]] bool resetAtEitherSpeed(IPort& port, bool& blnUARequired,
                                          session::Step step = session::Step::Reset);
    void resetAndListen(IPort& port, bool& blnUARequired, session::Step step);
    [[nodiscard]] bool waitForPowerCycle(IPort& port, bool& blnUARequired, bool blnUIMode);
    [[nodiscard]] bool waitForPowerCycleByUser(IPort& port, bool& blnUARequired);
    [[nodiscard]] bool waitForPowerCycleUnattended(IPort& port, bool& blnUARequired);
    [[nodiscard]] bool radioStillSilent(IPort& port, bool& blnUARequired);
    void FindRadioBaudRate(IPort& port, bool& blnUARequired, bool& blnInUpgradeMode);

    // Queries
    [[nodiscard]] bool ParseConfigurationReply(colConfigurations& configurations);
    [[nodiscard]] bool ReadFlashStructure(colFlashBlocks& blocks, Command command);
    [[nodiscard]] bool ReportFlashData();

    // Flash
    /// How far the writing of one file has come.
    struct Progress {
        std::int32_t fileIndex;
        QString fileName;
        std::int32_t total = 0;  ///< chunks expected
        std::int32_t chunks = 0; ///< chunks sent
    };
    [[nodiscard]] static std::shared_ptr<const colDefTables>
    planWrite(const clsFile& CurrentFile, const colFlashBlocks& FlashBlocks, QByteArray& blocks);
    void WriteFileData(IProtocolWindow& UIForm, IPort& port, const colDefTables& tables,
                       Progress progress);
    [[nodiscard]] bool setFlashAddress(IPort& port, const QString& digits, bool& compressed);
    [[nodiscard]] bool writeChunks(IProtocolWindow& UIForm, IPort& port, colDataBlocks& data,
                                   bool compressed, Progress& progress, TargetRecord& record);

    // Authorisation
    [[nodiscard]] bool SetMemoryTarget(IPort& port, const QString& strMemId);
    void awaitRestart(IProtocolWindow& UIForm, IPort& port);

    Platform& m_platform;
    IProtocolEvents& m_events;
    IWaitDialogFactory& m_dialogs;
    std::shared_ptr<const session::Teller> m_teller;

    UpgradeState m_upgrade;
    QString m_previousBaudRate;
    QByteArray m_lastFrame;
    QString strReply;            ///< hex text of the last reply read
    bool blnRetry = false;       ///< the radio reported a fault that a repeat may cure
    bool blnFlashLocked = false; ///< the radio answered "flash locked"
};

} // namespace fldc
