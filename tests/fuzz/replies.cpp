// Answers to queries and to commands for blocks. What is taken from them must be what a second
// little reader finds in them, and no fault may pass for success.

#include "FuzzedLine.h"
#include "protocol/ProtocolTest.h"

using namespace fldc;

namespace {

// The data of each record up to the done word.
std::vector<QByteArray> records(QByteArray heard)
{
    std::vector<QByteArray> all;
    while (!heard.isEmpty() && heard != "\xAF\xAF") {
        const bool busy = heard.startsWith("\xAE\xAE");
        const qsizetype size = busy ? -2 : 2 * static_cast<unsigned char>(heard.at(1));
        if (!busy) {
            all.push_back(heard.mid(2, size));
            EXPECT_EQ(heard.left(size + 4), FuzzedLine::record(heard[0], all.back()));
        }
        heard = heard.mid(size + 4);
    }
    return all;
}

unsigned number(const QByteArray& bytes, qsizetype at, qsizetype size)
{
    return bytes.mid(at, size).toHex().toUInt(nullptr, 16);
}

std::string configurations(const QByteArray& heard)
{
    std::string all;
    for (const QByteArray& record : records(heard)) {
        qsizetype end = 0;
        while (end + 8 <= record.size() && record.mid(end, 2) != QByteArray(2, '\0'))
            end += 2;
        const bool ended = end + 8 <= record.size();
        end = ended ? end : record.size() - 6;
        const QByteArray fields = record.mid(ended ? end + 2 : end);
        for (qsizetype i = 0; i < end; i += 2)
            all += std::to_string(number(record, i, 2)) + ' ';
        for (const auto& [at, size] : {std::pair(0, 4), {4, 2}, {6, 1}, {7, 1}})
            all += std::to_string(static_cast<int>(number(fields, at, size))) + '|';
    }
    return all;
}

std::string told(const colConfigurations& list)
{
    std::string all;
    for (const auto& each : list.items()) {
        for (const QChar letter : each->ProductID())
            all += std::to_string(letter.unicode()) + ' ';
        for (const int field : {each->ConfigurationAddress(), each->Status(),
                                int{each->NetWorkID()}, int{each->DeviceID()}})
            all += std::to_string(field) + '|';
    }
    return all;
}

// Sum of the blocks' lengths, as a map of blocks or of regions tells it.
std::uint32_t flashSize(const FuzzedLine::Write& write)
{
    const QByteArray record = records(write.heard).at(0);
    const bool regions = write.command() == 0x3E;
    const unsigned groups =
        regions ? number(record, 0, 2) : static_cast<unsigned>(record.size()) / 8;
    std::uint32_t sum = 0;
    for (qsizetype at = regions ? 6 : 4; at < 8 * qsizetype{groups}; at += 8)
        sum += regions ? 256 * number(record, at, 2) * (number(record, at + 2, 2) + 1)
                       : number(record, at, 4);
    return sum;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider fuzz(bytes, size);
    FuzzedMachine all(fuzz);
    FuzzedLine& line = *all.line;
    clsSerial port(all.platform, std::make_shared<Cancellation>());
    port.setPortType(all.line);
    port.SetPortParameters(QStringLiteral("19200"), 1);
    RecordingWindow window;
    Listener listener;
    clsProtocol protocol(all.platform, listener, listener);
    clsRadio radio;
    QString text;
    try {
        protocol.GetConfiguration(window, port, radio, text);
        const auto& answer = line.writes.back();
        if (lastError().ok())
            EXPECT_EQ(told(*radio.Configurations()), configurations(answer.heard));
        protocol.GetFlashBlocks(port, radio);
        std::uint32_t sum = 0;
        for (const auto& each : radio.FlashBlocks()->items())
            sum += static_cast<std::uint32_t>(each->Length());
        if (lastError().ok())
            EXPECT_EQ(sum, flashSize(line.writes.back()));
        line.writes.clear();
        protocol.EraseFlashBlock(window, port, radio, 1);
        for (std::size_t i = 0; lastError().ok() && i < line.writes.size(); ++i)
            EXPECT_TRUE(line.writes[i].acknowledged() ||
                        line.writes[i].bytes == line.writes.at(i + 1).bytes)
                << line.writes[i].heard.toHex().constData();
    } catch (const PlatformFailure&) { // what is decoded nowhere else; the manager makes it a code
    }
    EXPECT_EQ(all.machine.time.timersRunning(), 0);
    return 0;
}
