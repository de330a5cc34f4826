#include "firmware/SRecordImage.h"

#include "firmware/TextLines.h"
#include "platform/PlatformFailure.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array dataRecordTypes{
    DataRecordType{"S1", "S9", 4},
    DataRecordType{"S2", "S8", 6},
    DataRecordType{"S3", "S7", 8},
};

constexpr std::uint8_t padByte = 0xFF;
constexpr QStringView padText = u"FF";

// 32-bit two's complement: addresses wrap around.
constexpr std::int32_t addressPlus(std::int32_t address, std::int32_t units)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(address) +
                                     static_cast<std::uint32_t>(units));
}

QString givenUpText()
{
    return u"the reading was given up"_s;
}

} // namespace

const DataRecordType* dataRecordType(QByteArrayView type)
{
    const auto* found = std::ranges::find(dataRecordTypes, type, &DataRecordType::type);
    return found == dataRecordTypes.end() ? nullptr : found;
}

SRecordImage::SRecordImage(std::shared_ptr<clsFile> file, const DataRecordType& type,
                           Compression compression, const Pace& pace)
    : m_file(std::move(file)), m_type(type), m_compression(compression), m_pace(pace),
      m_unitBytes(m_file->intNumberOfBits() / 8), m_padsOddAddress(m_file->padsOddAddresses())
{
}

bool SRecordImage::read(TextLines& lines)
{
    m_lines = &lines;
    m_finished = lines.share();
    const std::array type{static_cast<std::uint8_t>(m_type.type[0]),
                          static_cast<std::uint8_t>(m_type.type[1])};
    for (;;) {
        const SRecordLine line(lines.line());
        if (line.type() == m_type.terminator)
            return finish();
        if (line.type() != m_type.type)
            return reject(line.type().isEmpty() ? u"an empty line inside the data"_s
                                                : u"a line of type %1 inside the data"_s.arg(
                                                      QString::fromLatin1(line.type())));
        if (!keepsPace() || !addLine(line))
            return false;
        // Records of the usual form, which is nearly all of them, need no look at their line.
        while (m_record.decode(lines.rest(), type) && isComplete(m_record)) {
            lines.take(m_record.length());
            if (!keepsPace() || !addDecoded(m_record))
                return false;
        }
        if (!lines.next())
            return reject(u"the file ends inside the data of an image"_s);
    }
}

bool SRecordImage::keepsPace()
{
    constexpr std::uint32_t recordsBetween = 1024;
    return ++m_recordsRead % recordsBetween != 0 || goesOn(m_pace, m_finished) ||
           reject(givenUpText());
}

bool SRecordImage::addLine(const SRecordLine& line)
{
    const std::int32_t address = line.address(m_type.addressDigits);
    if (!startRecord(address))
        return false;
    const std::int32_t units = line.units(m_type.addressDigits, m_unitBytes);
    const QString data = line.data(m_type.addressDigits, units, m_unitBytes);
    if (!addText(m_pad ? padText + data : data))
        return false;
    endRecord(address, units);
    return true;
}

bool SRecordImage::addText(const QString& digits)
{
    try {
        m_data->Add(digits);
        return true;
    } catch (const PlatformFailure& failure) {
        if (failure.number() != static_cast<int>(FailureNumber::TypeMismatch))
            throw;
        return reject(u"data that are not hexadecimal digits"_s);
    }
}

// Whether the record holds at least its address and checksum.
bool SRecordImage::isComplete(DecodedRecord& record) const
{
    return std::ssize(record.bytes()) > m_type.addressDigits / 2;
}

bool SRecordImage::addDecoded(DecodedRecord& record)
{
    const auto addressBytes = static_cast<std::size_t>(m_type.addressDigits) / 2;
    const auto unitBytes = static_cast<std::size_t>(m_unitBytes);
    const std::span<std::uint8_t> bytes = record.bytes();
    std::uint32_t addressValue = 0;
    for (const std::uint8_t byte : bytes.first(addressBytes))
        addressValue = addressValue << 8U | byte;
    const auto address = static_cast<std::int32_t>(addressValue);
    if (!startRecord(address))
        return false;

    const std::size_t units = (bytes.size() - addressBytes - 1) / unitBytes;
    if (m_pad) {
        // The address has been read, so its last byte's place can hold the pad.
        bytes[addressBytes - 1] = padByte;
        m_data->AddBytes(bytes.subspan(addressBytes - 1, units * unitBytes + 1));
    } else {
        m_data->AddBytes(bytes.subspan(addressBytes, units * unitBytes));
    }
    endRecord(address, static_cast<std::int32_t>(units));
    return true;
}

bool SRecordImage::startRecord(std::int32_t address)
{
    if (address != m_nextAddress)
        return startTable(address);
    // Only the very first record can continue nothing, at the address that stands for that.
    return m_data != nullptr || reject(u"data at address 7FFFFFFF without a start"_s);
}

bool SRecordImage::startTable(std::int32_t address)
{
    const std::shared_ptr<colDefTables> tables = m_file->Definitiontables();
    if (m_units != 0) {
        if (m_units % 2 != 0 && m_unitBytes == 1) {
            m_data->AddBytes(std::array{padByte});
            tables->SetPadAfter();
            ++m_units;
        }
        setLength(m_units);
        m_units = 0;
    }
    m_pad = m_padsOddAddress && address % 2 != 0;
    tables->Add(m_pad ? addressPlus(address, -1) : address);
    if (m_pad)
        tables->SetPadBefore();
    if (m_data && !finishData())
        return false;
    m_data = tables->Datablocks(tables->Count() - 1);
    return true;
}

void SRecordImage::endRecord(std::int32_t address, std::int32_t units)
{
    m_units += units + (m_pad ? 1 : 0);
    m_nextAddress = addressPlus(address, units);
    m_pad = false;
}

// Nearly all of the time goes into this: what was only read does not count as done.
bool SRecordImage::finishData()
{
    if (m_data->Count() == 0)
        return reject(u"a record without data stands alone at its address"_s);
    if (m_compression == Compression::None)
        m_data->FinishUncompressed();
    else
        m_data->CompressData(m_compression, [this](double share) {
            return goesOn(m_pace, m_finished + share * (m_lines->share() - m_finished));
        });
    m_finished = m_lines->share();
    return goesOn(m_pace, m_finished) || reject(givenUpText());
}

bool SRecordImage::finish()
{
    if (m_units != 0)
        setLength(m_units);
    return finishData();
}

void SRecordImage::setLength(std::int64_t units)
{
    if (units > std::numeric_limits<std::int32_t>::max())
        throw PlatformFailure(FailureNumber::Overflow);
    m_file->Definitiontables()->SetLength(static_cast<std::int32_t>(units));
}

bool SRecordImage::reject(const QString& reason)
{
    m_reason = reason;
    return false;
}

} // namespace fldc
