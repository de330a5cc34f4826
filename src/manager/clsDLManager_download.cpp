#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"
#include "firmware/colFiles.h"
#include "platform/IMessageBox.h"
#include "radio/HardwareMatch.h"
#include "radio/clsConfiguration.h"
#include "radio/colConfigurations.h"
#include "shared/DisplayTexts.h"
#include "shared/HexText.h"

#include <algorithm>
#include <vector>

namespace fldc {

namespace {

constexpr auto fpgaQuestion =
    u"You are attempting to upgrade FPGA software. This may cause damage on your radio. Only do "
    u"this after consulting the product release notes. Do you want to continue? ";

// Network numbers of the configurations whose product identifier begins with the five characters
// @p strPrefix, in order.
std::vector<std::int16_t> FindConfigurations(const clsRadio& radio, const QString& strPrefix)
{
    std::vector<std::int16_t> networks;
    for (const auto& configuration : radio.Configurations()->items()) {
        if (matchesHardware(configuration->ProductID(), strPrefix))
            networks.push_back(configuration->NetWorkID());
    }
    return networks;
}

// Hardware whose only memory device needs no selection on a radio without networks.
bool selectsOwnDevice(const clsFile& file, std::int32_t target)
{
    const QString hardware = file.Hardware(target);
    return (hardware == u"RVKB1" || hardware == u"K605") && file.DeviceID(target) == 0;
}

QString downloadMemoryId(std::int16_t network, std::int32_t device)
{
    return hexNumber(static_cast<std::uint32_t>(network), 2) +
           hexNumber(static_cast<std::uint32_t>(device), 2);
}

// A radio refuses a component for a memory device that it has not, or does not know authorisation:
// the next configuration may fit.
bool tolerated(Code code)
{
    return code == Code::MemoryDeviceInvalid || code == Code::CommandNotRecognised;
}

// True when files were written nowhere: their tags become the detail text, and code 37 is recorded
// unless something worse is.
bool listFilesNotDownloaded(const colFiles& files)
{
    QString tags;
    for (const auto& file : files.items()) {
        if (!file->Downloaded())
            tags += file->TagName() + QStringLiteral("\r\n");
    }
    lastError().setDetail(tags);
    if (!tags.isEmpty() && lastError().ok())
        lastError().set(Code::FilesNotDownloaded);
    return !tags.isEmpty();
}

} // namespace

/// The state of one download.
struct clsDLManager::Download {
    Session& session;
    bool networksZero;     ///< no configuration of the radio has a network number
    std::int32_t file = 0; ///< number of the file being written, from 1
    bool deviceSet = false;
};

std::int16_t clsDLManager::DownLoad(QString& strFilesToReport)
{
    std::int16_t result = 0;
    {
        const OperationScope operation;
        if (!operation.granted())
            return refusedResult;

        Session session = beginSession();
        m_teller->tell(session::OperationStarted{session::Operation::Download});
        m_filesLeftOver = false;
        trap(Trap::KeepCode, [&] { downloadSteps(session, strFilesToReport); });
        result = takeResult();
        const LastError outcome = lastError();
        // Files left over are no failure of the radio: their list stays in the detail text.
        if (lastError().code() == Code::FilesNotDownloaded)
            lastError().clear();
        closeSession(session, statusLineWithoutDetail(displayText(Text::DownloadSuccessful)));
        tellEnded(outcome);
    }
    EndAsyncTask(eDownload, strFilesToReport);
    complete();
    return result;
}

void clsDLManager::downloadSteps(Session& session, QString& strFilesToReport)
{
    m_radio = session.radio = std::make_shared<clsRadio>();
    session.openLogs();
    const std::shared_ptr<colFiles> files = m_load.files;
    if (files && !mayBeWritten(*files))
        return;
    // Without a line the log-on ends the download; what the user must be asked comes first.
    (void)session.openLine();
    clsProtocol& protocol = *session.protocol;
    if (m_uiMode)
        protocol.SetUpgradeMode(session.window().accessLevelChecked() ? 1 : 0);

    if (!files)
        throw PlatformFailure(FailureNumber::ObjectNotSet);
    if (!confirmFpgaUpgrade(*files))
        return;
    logRadioOn(session);
    if (!lastError().ok())
        return;
    protocol.NegotiateBaud(session.window(), session.port(),
                           m_uiMode || m_speedChosen ? session.window().baudRateIndex() : 0);
    if (!lastError().ok())
        return;

    logConfiguration(QStringLiteral("Before download..."));
    protocol.GetConfiguration(session.window(), session.port(), *session.radio, strFilesToReport);
    if (!lastError().ok())
        return;
    tellConfigurations(session::Reading::Before, *session.radio);
    Download download{session, session.radio->Configurations()->AllConfigNetworksZero()};
    for (const auto& file : files->items()) {
        if (!writeFile(download, *file))
            return;
    }

    logConfiguration(QStringLiteral("After download..."));
    protocol.GetConfiguration(session.window(), session.port(), *session.radio, strFilesToReport);
    if (!lastError().ok())
        return;
    tellConfigurations(session::Reading::After, *session.radio);
    if (!m_stayConnected)
        protocol.RestartRadio(session.window(), session.port());
    m_filesLeftOver = listFilesNotDownloaded(*files);
}

// False, with the code recorded, when the last load was cancelled, a file of its list was refused,
// or none of them could be loaded. Then the others are not written either: the user wanted all of
// them, and not those before.
bool clsDLManager::mayBeWritten(const colFiles& files) const
{
    if (m_loadCode == Code::UserCancelled)
        return fail(Code::UserCancelled);
    if (files.hasRejected())
        return fail(Code::FileFormatNotValid);
    if (files.Count() == 0)
        return fail(m_loadCode == Code::Success ? Code::FileDoesNotExist : m_loadCode);
    return true;
}

// Asks once, for the first FPGA image; an accepted one needs the special upgrade mode.
bool clsDLManager::confirmFpgaUpgrade(const colFiles& files)
{
    for (const auto& file : files.items()) {
        if (!file->isFpgaImage())
            continue;
        if (!m_platform.messages.askYesNo(QString::fromUtf16(fpgaQuestion)))
            return fail(Code::UserCancelled);
        m_Protocol->SetUpgradeMode(1);
        break;
    }
    return true;
}

// False when the download ends here, with the code recorded.
bool clsDLManager::writeFile(Download& download, clsFile& file)
{
    file.setDownloaded(false);
    ++download.file;
    const std::int32_t targets = file.CountTargets();
    if (targets == 0)
        return writeWithoutTargets(download, file);
    for (std::int32_t target = 0; target < targets; ++target) {
        download.session.window().setFileNameTextBox(file.TagName());
        download.session.window().setProgressBar(0);
        for (const std::int16_t network :
             FindConfigurations(*download.session.radio, file.Hardware(target))) {
            if (!writeToNetwork(download, file, target, network))
                return false;
        }
    }
    return true;
}

bool clsDLManager::writeWithoutTargets(Download& download, clsFile& file)
{
    Session& session = download.session;
    session.protocol->GetFlashBlocks(session.port(), *session.radio);
    if (lastError().code() == Code::MemoryDeviceInvalid) {
        lastError().clear();
        return true;
    }
    return lastError().ok() && writeBlocks(download, file, {});
}

bool clsDLManager::writeToNetwork(Download& download, clsFile& file, std::int32_t target,
                                  std::int16_t network)
{
    Session& session = download.session;
    clsProtocol& protocol = *session.protocol;
    const session::Place place{network, file.DeviceID(target)};
    if (download.networksZero && selectsOwnDevice(file, target)) {
        download.deviceSet = true;
        file.setCountTargets(0);
    }
    if (download.file > 1)
        protocol.CloseAllTunnels(session.port());
    protocol.AuthoriseSetMemory(session.port(), file.TagName(),
                                downloadMemoryId(network, file.DeviceID(target)),
                                download.deviceSet);
    if (!lastError().ok())
        return tolerated(lastError().code());
    protocol.GetFlashBlocks(session.port(), *session.radio);
    return lastError().ok() && writeBlocks(download, file, place);
}

bool clsDLManager::writeBlocks(Download& download, clsFile& file,
                               std::optional<session::Place> place)
{
    Session& session = download.session;
    m_teller->tell(session::TargetBegun{download.file, file.Name(), file.TagName(), place});
    session.protocol->WriteDataToFlash(session.window(), session.port(), file,
                                       *session.radio->FlashBlocks(), download.file);
    if (!lastError().ok())
        return false;
    file.setDownloaded(true);
    return true;
}

} // namespace fldc
