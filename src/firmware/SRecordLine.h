#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstdint>

namespace fldc {

/// The fields of one line of a firmware file, as far as the line holds them. All but the type are
/// hexadecimal digits: the count of the bytes that follow it (2 digits), the address (4, 6 or 8
/// digits by type), the data, and a checksum of 2 digits that is not looked at.
///
/// A field that can't be read is shown in the error box and taken as 0 or as empty text.
class SRecordLine {
public:
    explicit SRecordLine(QByteArrayView line) : m_line(line) {}

    /// The first two characters of the line.
    [[nodiscard]] QByteArrayView type() const { return m_line.first(qMin(m_line.size(), 2)); }
    /// The whole line as text.
    [[nodiscard]] QString text() const { return QString::fromLatin1(m_line); }

    /// The address of @p digits digits as 32-bit two's complement. A line that ends within the
    /// field gives the digits that are there.
    [[nodiscard]] std::int32_t address(int digits) const;
    /// Number of whole units of @p unitBytes bytes that the count leaves for data.
    [[nodiscard]] std::int32_t units(int addressDigits, int unitBytes) const;
    /// The digits of that many units, or fewer when the line ends before.
    [[nodiscard]] QString data(int addressDigits, std::int32_t units, int unitBytes) const;
    /// The data of a header record (4 address digits) as characters, blanks at both ends removed.
    [[nodiscard]] QString headerText() const;

private:
    [[nodiscard]] QString middle(qsizetype position, qsizetype length) const;

    QByteArrayView m_line;
};

} // namespace fldc
