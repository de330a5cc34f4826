#include "firmware/SRecordLine.h"

#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "shared/HexText.h"

namespace fldc {

namespace {

constexpr qsizetype countPosition = 2;
constexpr qsizetype countDigits = 2;
constexpr qsizetype addressPosition = 4;
constexpr int headerAddressDigits = 4;
constexpr int checksumDigits = 2;

// What @p read gives; its failure is shown, and gives the empty value.
template <class Read>
auto readField(Read read) -> decltype(read())
{
    try {
        return read();
    } catch (const std::exception&) {
        ShowError(currentFailure());
        return {};
    }
}

QString withoutOuterBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.sliced(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text.toString();
}

} // namespace

QString SRecordLine::middle(qsizetype position, qsizetype length) const
{
    const qsizetype start = qMin(position, m_line.size());
    return QString::fromLatin1(m_line.sliced(start, qMin(length, m_line.size() - start)));
}

std::int32_t SRecordLine::address(int digits) const
{
    return readField([&] { return hexToInt(middle(addressPosition, digits)); });
}

std::int32_t SRecordLine::units(int addressDigits, int unitBytes) const
{
    return readField([&] {
        const std::int32_t count = hexToInt(middle(countPosition, countDigits));
        const std::int32_t dataBytes = count - (addressDigits + checksumDigits) / 2;
        if (dataBytes < 0)
            throw PlatformFailure(FailureNumber::InvalidArgument);
        return dataBytes / unitBytes;
    });
}

QString SRecordLine::data(int addressDigits, std::int32_t units, int unitBytes) const
{
    return middle(addressPosition + addressDigits, qsizetype{2} * units * unitBytes);
}

QString SRecordLine::headerText() const
{
    return readField([&] {
        const qsizetype start = addressPosition + headerAddressDigits;
        const qsizetype length = m_line.size() - start - checksumDigits;
        if (length < 0)
            throw PlatformFailure(FailureNumber::InvalidArgument);
        // Half a character is none: a digit without its pair is left out.
        const QByteArray codes = hexToBytes(middle(start, length - length % 2));
        return withoutOuterBlanks(QString::fromLatin1(codes));
    });
}

} // namespace fldc
