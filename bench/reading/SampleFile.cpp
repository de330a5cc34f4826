#include "SampleFile.h"

#include <QStringBuilder>

#include <random>
#include <vector>

namespace fldc::bench {

namespace {

constexpr qsizetype bytesPerRecord = 32;

void appendRecord(QByteArray& text, char type, const QByteArray& fields)
{
    const auto count = static_cast<unsigned>(fields.size() + 1);
    unsigned sum = count;
    for (const char byte : fields)
        sum += static_cast<std::uint8_t>(byte);
    QByteArray bytes(1, static_cast<char>(count));
    bytes += fields;
    bytes += static_cast<char>(~sum);
    text += 'S';
    text += type;
    text += bytes.toHex().toUpper();
    text += "\r\n";
}

QByteArray addressBytes(qsizetype address)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(address >> shift));
    return bytes;
}

} // namespace

QByteArray codeLikeBytes(qsizetype size)
{
    constexpr std::size_t instructionCount = 512;
    std::mt19937 random(20261122); // any fixed number
    // A number below @p limit; the higher @p power, the more often a low one.
    const auto skewed = [&](std::size_t limit, int power) {
        double value = 1.0;
        for (int i = 0; i < power; ++i)
            value *= static_cast<double>(random()) / 4294967296.0;
        return static_cast<std::size_t>(value * static_cast<double>(limit));
    };
    std::vector<QByteArray> instructions(instructionCount);
    for (QByteArray& instruction : instructions) {
        for (std::size_t length = 2 + skewed(5, 1); length > 0; --length)
            instruction.append(static_cast<char>(skewed(256, 2)));
    }
    QByteArray bytes;
    bytes.reserve(size + 16);
    while (bytes.size() < size) {
        bytes += instructions[skewed(instructionCount, 4)];
        if (skewed(10, 1) < 4)
            bytes.append(static_cast<char>(skewed(256, 3))); // an operand
    }
    bytes.truncate(size);
    return bytes;
}

QByteArray sRecordText(const QByteArray& payload, const QByteArray& header, int unitBytes)
{
    QByteArray text;
    text.reserve(payload.size() / 2 * 5 + 4096);
    appendRecord(text, '0', QByteArray(2, '\0') + header);
    for (qsizetype i = 0; i < payload.size(); i += bytesPerRecord)
        appendRecord(text, '3', addressBytes(i / unitBytes) + payload.mid(i, bytesPerRecord));
    appendRecord(text, '7', addressBytes(0));
    return text;
}

} // namespace fldc::bench
