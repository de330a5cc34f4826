// Answers to queries and to commands for blocks. What is taken from them must be what a second
// little reader takes, and no fault may pass for success.

#include "../protocol/ProtocolTest.h"
#include "FuzzedLine.h"

using namespace fldc;

namespace {

// The bytes of each record up to the done word.
std::vector<QByteArray> records(QByteArray heard)
{
    std::vector<QByteArray> all;
    while (!heard.isEmpty() && heard != "\xAF\xAF") {
        if (heard.startsWith("\xAE\xAE")) {
            heard = heard.mid(2);
            continue;
        }
        const qsizetype size = 2 * static_cast<unsigned char>(heard.at(1));
        all.push_back(heard.mid(2, size));
        EXPECT_EQ(heard.left(size + 4), FuzzedLine::record(heard[0], all.back()));
        heard = heard.mid(size + 4);
    }
    return all;
}

unsigned numberIn(const QByteArray& bytes, qsizetype at, qsizetype size)
{
    return bytes.mid(at, size).toHex().toUInt(nullptr, 16);
}

QStringList configurations(const QByteArray& heard)
{
    QStringList all;
    for (const QByteArray& record : records(heard)) {
        qsizetype end = 0;
        while (end + 8 <= record.size() && record.mid(end, 2) != QByteArray(2, '\0'))
            end += 2;
        const bool ended = end + 8 <= record.size();
        end = ended ? end : record.size() - 6;
        const QByteArray fields = record.mid(ended ? end + 2 : end);
        QString text;
        for (qsizetype i = 0; i < end; i += 2)
            text += QChar(static_cast<char16_t>(numberIn(record, i, 2)));
        all.append(text + QStringLiteral("|%1|%2|%3|%4")
                              .arg(static_cast<int>(numberIn(fields, 0, 4)))
                              .arg(numberIn(fields, 4, 2))
                              .arg(numberIn(fields, 6, 1))
                              .arg(numberIn(fields, 7, 1)));
    }
    return all;
}

QStringList blocks(const FuzzedLine::Write& write)
{
    const auto all = records(write.heard);
    const QByteArray record = all.empty() ? QByteArray() : all[0];
    const bool inRegions = write.command() == 0x3E;
    QStringList texts;
    const unsigned groups = inRegions ? numberIn(record, 0, 2) : static_cast<unsigned>(record.size()) / 8;
    for (unsigned group = 0; group < groups; ++group) {
        const qsizetype at = (inRegions ? 2 : 0) + 8 * qsizetype{group};
        const unsigned length = inRegions ? 256 * numberIn(record, at + 4, 2) : numberIn(record, at + 4, 4);
        const unsigned last = inRegions ? numberIn(record, at + 6, 2) : 0;
        for (unsigned i = 0; i <= last; ++i)
            texts.append(QStringLiteral("%1+%2").arg(numberIn(record, at, 4) + i * length).arg(length));
    }
    return texts;
}

// True for success, which no fault may be.
bool succeeds(const FuzzedLine& line, const std::function<void()>& conversation)
{
    try {
        conversation();
    } catch (const PlatformFailure&) {
        return false;
    }
    const bool ok = lastError().ok();
    EXPECT_FALSE(ok && !line.writes.back().acknowledged());
    return ok;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider fuzz(bytes, size);
    FuzzedMachine all(fuzz);
    FuzzedLine& line = *all.lines.line;
    clsSerial port(all.platform, std::make_shared<Cancellation>());
    port.setPortType(all.lines.line);
    port.SetPortParameters(QStringLiteral("19200"), 1);
    RecordingWindow window;
    Listener listener;
    clsProtocol protocol(all.platform, listener, listener);
    clsRadio radio;
    QString text;
    if (succeeds(line, [&] { protocol.GetConfiguration(window, port, radio, text); })) {
        QStringList texts;
        for (const auto& each : radio.Configurations()->items())
            texts.append(each->ProductID() + QStringLiteral("|%1|%2|%3|%4")
                                                 .arg(each->ConfigurationAddress())
                                                 .arg(each->Status())
                                                 .arg(each->NetWorkID())
                                                 .arg(each->DeviceID()));
        EXPECT_EQ(texts, configurations(line.writes.back().heard));
    }
    if (succeeds(line, [&] { protocol.GetFlashBlocks(port, radio); })) {
        QStringList texts;
        for (const auto& each : radio.FlashBlocks()->items())
            texts.append(QStringLiteral("%1+%2")
                             .arg(static_cast<std::uint32_t>(each->StartAddress()))
                             .arg(static_cast<std::uint32_t>(each->Length())));
        EXPECT_EQ(texts, blocks(line.writes.back()));
    }
    line.writes.resize(1);
    if (succeeds(line, [&] { protocol.EraseFlashBlock(window, port, radio, 1); }))
        for (std::size_t i = line.writes.size() - 1; line.writes[i].command() != 0x32; --i)
            EXPECT_TRUE(line.writes[i].acknowledged() || line.writes[i].bytes == line.writes[i + 1].bytes);
    EXPECT_EQ(all.machine.time.timersRunning(), 0);
    return 0;
}
