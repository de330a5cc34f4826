#include "protocol/clsProtocol.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"
#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "port/IPort.h"
#include "protocol/FlashPlan.h"
#include "protocol/IProtocolEvents.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/PadPlacement.h"
#include "protocol/record/TargetRecord.h"
#include "protocol/wire/Frames.h"
#include "radio/clsRadio.h"
#include "shared/DisplayTexts.h"
#include "shared/HexText.h"
#include "shared/LastError.h"
#include "shared/NumberText.h"

namespace fldc {

using namespace std::chrono_literals;

namespace {

constexpr int maximumWriteAttempts = 3;
constexpr auto flashTimeout = 2000ms;

// The start address of a run as the 8 digits that go to the radio.
QString addressDigits(const DataDefinition& run)
{
    return hexNumber(static_cast<std::uint32_t>(runAddress(run)), 8);
}

// A run that was never finished ends in room that is not the file's.
bool allFinished(const colDefTables& tables)
{
    for (std::int32_t i = 0; i < tables.Count(); ++i) {
        const auto data = tables.Datablocks(i);
        if (data->Count() > 0 && !data->finished())
            return false;
    }
    return true;
}

} // namespace

void clsProtocol::EraseFlashBlock(IProtocolWindow& UIForm, IPort& port, clsRadio& radio,
                                  std::int32_t intIndex)
{
    UIForm.setStatusPanelStatus(displayText(Text::ErasingFlash));
    const auto configuration = radio.Configurations()->Item(intIndex);
    const auto found = radio.FlashBlocks()->blockAround(configuration->ConfigurationAddress());
    if (!found) {
        lastError().set(Code::FlashAddressDoesNotExist);
        return;
    }
    const QByteArray block = wordBytes(static_cast<std::uint16_t>(found->ID()));
    (void)(SendCommand(port, flashTimeout, Command::UnlockFlash, block) &&
           SendCommand(port, flashTimeout, Command::EraseFlash, block) &&
           SendCommand(port, flashTimeout, Command::LockFlash, block));
}

void clsProtocol::WriteDataToFlash(IProtocolWindow& UIForm, IPort& port, const clsFile& CurrentFile,
                                   const colFlashBlocks& FlashBlocks, std::int32_t lngIndex)
{
    const auto status = [&](Text text) { UIForm.setStatusPanelStatus(displayText(text)); };

    UIForm.setFileNameTextBox(CurrentFile.TagName());
    status(Text::CheckingFile);
    QByteArray blocks;
    const auto tables = planWrite(CurrentFile, FlashBlocks, blocks);
    if (!tables)
        return;

    status(Text::UnlockingFlash);
    if (!SendCommand(port, flashTimeout, Command::UnlockFlash, blocks))
        return;

    // A block that locks itself in the middle is erased and written again.
    for (int attempt = 1; attempt <= maximumWriteAttempts; ++attempt) {
        status(Text::ErasingFlash);
        if (!SendCommand(port, flashTimeout, Command::EraseFlash, blocks))
            return;
        status(Text::DownloadingData);
        WriteFileData(UIForm, port, *tables, {lngIndex, CurrentFile.TagName()});
        if (!blnFlashLocked)
            break;
    }
    if (!lastError().ok())
        return;

    status(Text::LockingFlash);
    (void)SendCommand(port, flashTimeout, Command::LockFlash, blocks);
}

// The runs to write and the blocks that they touch; null, with the last error set, when the file
// can't be written into this flash.
std::shared_ptr<const colDefTables> clsProtocol::planWrite(const clsFile& CurrentFile,
                                                           const colFlashBlocks& FlashBlocks,
                                                           QByteArray& blocks)
{
    if (!allFinished(*CurrentFile.Definitiontables())) {
        lastError().set(Code::DataError);
        return nullptr;
    }
    try {
        const auto tables = placePads(CurrentFile, FlashBlocks);
        return tables && GetFileBlockList(blocks, *tables, FlashBlocks) ? tables : nullptr;
    } catch (...) {
        // An incomplete block list must never reach the radio.
        ShowError(currentFailure());
        lastError().set(Code::AddressError);
        return nullptr;
    }
}

void clsProtocol::WriteFileData(IProtocolWindow& UIForm, IPort& port, const colDefTables& tables,
                                Progress progress)
{
    try {
        const ChunkTotals totals = estimateChunks(tables);
        progress.total = totals.compressed;
        TargetRecord record(*m_teller, tables);
        for (std::int32_t i = 0; i < tables.Count(); ++i) {
            const DataDefinition run = tables.Item(i);
            const auto data = run.Datablocks;
            bool compressed = data->CompressedCount() > 0;
            if (!setFlashAddress(port, addressDigits(run), compressed))
                return;
            if (!compressed)
                progress.total = totals.plain;
            record.tableBegun(i, compressed);
            if (!writeChunks(UIForm, port, *data, compressed, progress, record))
                return;
        }
        UIForm.setProgressBar(100);
        lastError().clear();
        m_teller->tell(session::TargetWritten{});
    } catch (...) {
        lastError().set(Code::DataError);
    }
}

// Tells the radio where the table starts. @p compressed: in, the table has compressed data; out, it
// is to be sent compressed, which a radio that does not know the command can't take.
bool clsProtocol::setFlashAddress(IPort& port, const QString& digits, bool& compressed)
{
    const QByteArray address = HexToBytes(digits);
    if (compressed && !SendCommand(port, flashTimeout, Command::SetFlashAddressInflate, address))
        compressed = lastError().code() != Code::CommandNotRecognised;
    if (!compressed)
        (void)SendCommand(port, flashTimeout, Command::SetFlashAddress, address);
    logDownload(QStringLiteral("Address:") + digits);
    return lastError().ok();
}

bool clsProtocol::writeChunks(IProtocolWindow& UIForm, IPort& port, colDataBlocks& data,
                              bool compressed, Progress& progress, TargetRecord& record)
{
    const Command write = compressed ? Command::WriteFlashDataInflate : Command::WriteFlashData;
    data.setReadPosition(0);
    QByteArray chunk;
    for (auto length = static_cast<std::int32_t>(maximumFrameData);
         data.GetNextChunk(length, compressed, chunk);
         length = static_cast<std::int32_t>(maximumFrameData)) {
        ++progress.chunks;
        const std::int32_t percentage = divideRounded(100LL * progress.chunks, progress.total);
        UIForm.setProgressBar(static_cast<std::int16_t>(percentage));
        m_events.onDownloadProgress(percentage, progress.fileName, progress.fileIndex);
        if (!SendCommand(port, flashTimeout, write, chunk))
            return false;
        record.frameAnswered(chunk.size());
    }
    return true;
}

} // namespace fldc
