#include "firmware/clsFile.h"

#include "platform/PlatformFailure.h"
#include "shared/LastError.h"
#include "shared/NumberText.h"

#include <QStringList>

#include <algorithm>

namespace fldc {

void clsFile::setIntNumberOfBits(std::int16_t bits)
{
    m_numberOfBits = bits;
    if (bits == 8 || bits == 16 || bits == 32)
        m_zeroUnit = QString(bits / 4, u'0');
    else
        lastError().set(Code::FileFormatNotValid);
}

QString clsFile::Hardware(std::int32_t lngIndex) const
{
    return target(lngIndex).hardware;
}

std::int32_t clsFile::DeviceID(std::int32_t lngIndex) const
{
    return target(lngIndex).device;
}

clsFile::Target clsFile::target(std::int32_t index) const
{
    if (index >= m_countTargets)
        return {};
    if (index < 0 || static_cast<std::size_t>(index) >= m_targets.size())
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    return m_targets[static_cast<std::size_t>(index)];
}

void clsFile::AddTarget(const QString& strHardware, std::int32_t lngDevice)
{
    if (m_countTargets < 0)
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    const auto position = static_cast<std::size_t>(m_countTargets);
    // Storage grows in steps of four; there is always room for the entry itself.
    const std::size_t wanted = position % 4 == 0 ? position + 5 : position + 1;
    m_targets.resize(std::max(m_targets.size(), wanted));
    m_targets[position] = {strHardware, lngDevice};
    ++m_countTargets;
}

void clsFile::AddTargets(const QString& strHardwares, const QString& strDevices)
{
    const QStringList hardwares = strHardwares.split(u'|');
    const QStringList devices = strDevices.split(u'|');
    if (strHardwares.isEmpty() || devices.size() < hardwares.size())
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    m_targets.clear();
    for (qsizetype i = 0; i < hardwares.size(); ++i)
        m_targets.push_back({hardwares[i], readNumber(devices[i]).value_or(0)});
    m_countTargets = static_cast<std::int32_t>(hardwares.size());
}

} // namespace fldc
