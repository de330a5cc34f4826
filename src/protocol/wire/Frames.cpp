#include "protocol/wire/Frames.h"

#include "shared/HexText.h"
#include "shared/LastError.h"

namespace fldc {

void AddChecksum(QByteArray& bytFrame, qsizetype intStart, qsizetype intEnd)
{
    const auto byteAt = [&](qsizetype i) { return static_cast<std::uint8_t>(bytFrame.at(i)); };
    std::uint32_t sum = 0;
    for (qsizetype i = intStart; i < intEnd; i += 2)
        sum += byteAt(i) * 256U + byteAt(i + 1);
    const auto checksum = static_cast<std::uint16_t>(0xFFFFU - (sum & 0xFFFFU));
    bytFrame.replace(intEnd + 1, 2, wordBytes(checksum));
}

std::optional<QByteArray> buildFrame(Command command, const QByteArray& bytData)
{
    if (bytData.size() % 2 != 0 || bytData.size() > maximumFrameData) {
        lastError().set(Code::DataLength);
        return std::nullopt;
    }
    QByteArray frame;
    frame.reserve(bytData.size() + 4);
    frame.append(static_cast<char>(command));
    frame.append(static_cast<char>(bytData.size() / 2));
    frame.append(bytData);
    frame.append(2, '\0');
    AddChecksum(frame, 0, frame.size() - 3);
    return frame;
}

QString HexChecksum(QStringView strHex)
{
    std::uint32_t sum = 0;
    for (qsizetype i = 0; i < strHex.size(); i += 4) {
        const auto group = readHex(strHex.mid(i, 4));
        if (!group) {
            lastError().set(Code::Checksum);
            return {};
        }
        sum += *group;
    }
    lastError().clear();
    return hexNumber(0xFFFFU - (sum & 0xFFFFU), 4);
}

std::optional<QString> ExtractRecordData(QStringView strRecord)
{
    const auto failed = [](Code code) {
        lastError().set(code);
        return std::nullopt;
    };
    if (strRecord.isEmpty())
        return failed(Code::DataExpected);
    const auto words = readHex(strRecord.mid(2, 2));
    if (!words || strRecord.size() != 8 + 4 * static_cast<qsizetype>(*words))
        return failed(Code::DataLength);
    const QStringView checksum = strRecord.last(4);
    if (HexChecksum(strRecord.chopped(4)) != checksum)
        return failed(Code::Checksum);
    return strRecord.mid(4, 4 * static_cast<qsizetype>(*words)).toString();
}

QByteArray HexToBytes(QStringView strHex)
{
    return hexToBytes(strHex);
}

QByteArray textAsWords(QStringView strText)
{
    QByteArray bytes;
    bytes.reserve(strText.size() * 2);
    for (const QChar character : strText)
        bytes.append(wordBytes(character.unicode()));
    return bytes;
}

QByteArray wordBytes(std::uint16_t value)
{
    QByteArray bytes(2, Qt::Uninitialized);
    bytes[0] = static_cast<char>(value >> 8U);
    bytes[1] = static_cast<char>(value & 0xFFU);
    return bytes;
}

} // namespace fldc
