#include "device/UpgradeMode.h"

#include <algorithm>

namespace simulator {

namespace {

using std::chrono::operator""ms;

// The host needs this long to follow to the new speed.
constexpr milliseconds speedChangePause = 30ms;
constexpr milliseconds eraseTimePerBlock = 25ms;
constexpr milliseconds pauseBetweenRecords = 3ms;

Flash::BlockNumbers blockNumbers(ByteView data)
{
    Flash::BlockNumbers numbers;
    for (std::size_t offset = 0; offset < data.size(); offset += 2)
        numbers.push_back(wordAt(data, offset));
    return numbers;
}

std::string blockText(const Flash::BlockNumbers& numbers)
{
    std::string text = numbers.size() == 1 ? "block" : "blocks";
    for (const std::uint16_t number : numbers)
        text += ' ' + std::to_string(number);
    return text;
}

std::string placeText(const Flash& flash)
{
    return std::string(flash.layout().name) + " (network " +
           std::to_string(flash.layout().network) + " device " +
           std::to_string(flash.layout().device) + ")";
}

} // namespace

UpgradeMode::UpgradeMode(const Profile& profile, const Faults& faults, Memory& memory, Log& log)
    : m_profile(profile), m_faults(faults), m_memory(memory), m_log(log),
      m_target(&memory.devices.front())
{
}

void UpgradeMode::restart()
{
    endWriting();
    forgetDownload();
    m_authorised.clear();
    m_target = &m_memory.devices.front();
    for (Flash& flash : m_memory.devices)
        flash.lockAll();
}

// --- speed, readiness, restart

FaultWord UpgradeMode::setBaudRate(ByteView data)
{
    const int speed = wordAt(data, 0) * 1200;
    if (std::find(m_profile.speeds.begin(), m_profile.speeds.end(), speed) ==
        m_profile.speeds.end())
        return FaultWord::UnsupportedSpeed;
    m_answer.newSpeed = speed;
    m_answer.pieces.push_back({wordsToBytes({doneWord}), speedChangePause});
    return FaultWord::None;
}

FaultWord UpgradeMode::confirmReady(ByteView /*data*/)
{
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::resetRadio(ByteView /*data*/)
{
    m_answer.restart = true;
    return FaultWord::None;
}

// --- reports

void UpgradeMode::sayRecord(std::uint8_t header, const Bytes& data)
{
    Bytes record;
    append16(record, header * 256U + static_cast<std::uint32_t>(data.size() / 2));
    record.insert(record.end(), data.begin(), data.end());
    append16(record, checksum(record));
    m_answer.pieces.push_back({record, pauseBetweenRecords});
}

FaultWord UpgradeMode::reportConfiguration(ByteView /*data*/)
{
    std::string products;
    for (const Component& component : m_memory.components) {
        Bytes data;
        for (const char character : component.product)
            append16(data, static_cast<std::uint8_t>(character));
        // Product, zero, address, status, network and device.
        // Radios that don't report networks don't end the product with a zero either.
        if (m_profile.reportsNetworks)
            append16(data, 0);
        append32(data, component.address);
        append16(data, component.status);
        if (m_profile.reportsNetworks)
            append16(data, component.network * 256U + component.device);
        // Checking a component's code takes the radio a moment: it is busy before the second
        // record.
        if (m_answer.pieces.size() == 1)
            m_answer.pieces.push_back({wordsToBytes({busyWord}), pauseBetweenRecords});
        sayRecord(0x43, data);
        products += (products.empty() ? "" : ", ") + component.product;
        if (component.status != statusGood)
            products += " (status " + std::to_string(component.status) + ")";
    }
    sayDone();
    m_log.event("Reported its components: " + products);
    return FaultWord::None;
}

FaultWord UpgradeMode::reportFlashStructure(ByteView /*data*/)
{
    Bytes data;
    for (const Flash::Block& block : m_target->blocks()) {
        append32(data, block.start);
        append32(data, block.length);
    }
    sayRecord(0x46, data);
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::reportFlashRegions(ByteView /*data*/)
{
    Bytes data;
    append16(data, static_cast<std::uint32_t>(m_target->layout().regions.size()));
    for (const Region& region : m_target->layout().regions) {
        append32(data, region.start);
        append16(data, region.blockSize / 256);
        append16(data, region.blocks - 1U);
    }
    sayRecord(0x52, data);
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::reportFlashId(ByteView /*data*/)
{
    sayRecord(0x49, wordsToBytes({0x0001, 0x22C4})); // manufacturer and device
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::reportFlashOtp(ByteView /*data*/)
{
    sayRecord(0x49, wordsToBytes({0x4F54, 0x5020, 0x0001, 0x0002}));
    sayDone();
    return FaultWord::None;
}

// --- authorisation and memory target

void UpgradeMode::authorise(ByteView code, std::string_view where)
{
    endWriting();
    forgetDownload();
    m_authorised = textOfWords(code);
    m_log.event("Authorised " + m_authorised + " " + std::string(where));
    sayDone();
}

FaultWord UpgradeMode::authoriseOnDevice(ByteView data)
{
    if (!m_profile.knowsNetworks)
        return FaultWord::NetworkComponentUnknown;
    Flash* flash = m_memory.find(data[0], data[1]);
    if (flash == nullptr)
        return FaultWord::MemoryDeviceUnknown;
    authorise(data.subspan(2), "for the " + placeText(*flash));
    m_target = flash;
    return FaultWord::None;
}

FaultWord UpgradeMode::authoriseComponent(ByteView data)
{
    authorise(data, "for whichever memory is selected");
    return FaultWord::None;
}

FaultWord UpgradeMode::setMemoryTarget(ByteView data)
{
    Flash* flash = m_memory.find(data[0], data[1]);
    if (flash == nullptr)
        return FaultWord::MemoryDeviceUnknown;
    endWriting();
    m_target = flash;
    m_log.event("Memory target: the " + placeText(*flash));
    sayDone();
    return FaultWord::None;
}

// --- blocks

FaultWord UpgradeMode::unlockFlash(ByteView data)
{
    const auto blocks = blockNumbers(data);
    const FaultWord fault = m_target->setLocked(blocks, false);
    if (fault != FaultWord::None)
        return fault;
    m_log.event("Unlocked " + blockText(blocks) + " of the " + placeText(*m_target));
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::eraseFlash(ByteView data)
{
    const auto blocks = blockNumbers(data);
    const FaultWord fault = m_target->erase(blocks);
    if (fault != FaultWord::None)
        return fault;
    endWriting();
    forgetDownload();
    m_memory.markErased(*m_target, blocks);
    m_log.event("Erased " + blockText(blocks));
    for (std::size_t i = 0; i < blocks.size(); ++i)
        m_answer.pieces.push_back({wordsToBytes({busyWord}), eraseTimePerBlock});
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::lockFlash(ByteView data)
{
    const auto blocks = blockNumbers(data);
    const FaultWord fault = m_target->setLocked(blocks, true);
    if (fault != FaultWord::None)
        return fault;
    endWriting();
    m_log.event("Locked " + blockText(blocks));
    installComponent(blocks);
    sayDone();
    return FaultWord::None;
}

// --- data

FaultWord UpgradeMode::beginWriting(ByteView address, Writing how)
{
    endWriting();
    const std::uint32_t units = longAt(address, 0);
    const auto offset = m_target->offsetOf(units);
    if (!offset)
        return FaultWord::InvalidAddress;
    if (!m_firstAddress) {
        m_firstAddress = units;
        m_low = m_high = *offset;
    }
    m_writing = how;
    m_cursor = m_begin = *offset;
    m_sent = 0;
    m_inflater.restart();
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::setFlashAddress(ByteView data)
{
    return beginWriting(data, Writing::Plain);
}

FaultWord UpgradeMode::setFlashAddressInflate(ByteView data)
{
    return beginWriting(data, Writing::Inflating);
}

FaultWord UpgradeMode::put(ByteView plain, std::size_t sent)
{
    const FaultWord fault = m_target->write(m_cursor, plain);
    if (fault != FaultWord::None)
        return fault;
    m_cursor += plain.size();
    m_sent += sent;
    m_low = std::min(m_low, m_begin);
    m_high = std::max(m_high, m_cursor);
    sayDone();
    return FaultWord::None;
}

FaultWord UpgradeMode::writeFlashData(ByteView data)
{
    return m_writing == Writing::Plain ? put(data, data.size()) : FaultWord::NoAddress;
}

FaultWord UpgradeMode::writeFlashDataInflate(ByteView data)
{
    if (m_writing != Writing::Inflating)
        return FaultWord::NoAddress;
    Bytes plain;
    const auto outcome = m_inflater.feed(data, plain);
    const FaultWord fault = put(plain, data.size());
    if (outcome == Inflater::Outcome::MoreWanted && fault == FaultWord::None)
        return fault;
    // The stream is over: at its end, or because it cannot go on behind a gap.
    m_damaged = outcome != Inflater::Outcome::StreamEnded || fault != FaultWord::None;
    m_writing = Writing::Nothing;
    endWriting();
    if (outcome == Inflater::Outcome::Broken) {
        m_log.event("The compressed data do not inflate");
        return FaultWord::InvalidLength;
    }
    return fault;
}

void UpgradeMode::endWriting()
{
    const std::size_t written = m_cursor - m_begin;
    if (m_writing == Writing::Inflating) {
        m_damaged = true;
        m_log.event("The compressed data end in the middle");
    }
    if (written > 0) {
        const std::size_t units = m_begin / m_target->layout().unitBytes;
        const auto address = m_target->blocks().front().start + static_cast<std::uint32_t>(units);
        m_log.event("Wrote " + std::to_string(written) + " bytes at " + hex(address, 8) +
                    (m_sent != written ? ", compressed to " + std::to_string(m_sent) : ""));
    }
    m_writing = Writing::Nothing;
    m_begin = m_cursor;
}

void UpgradeMode::forgetDownload()
{
    m_firstAddress.reset();
    m_damaged = false;
}

void UpgradeMode::installComponent(const Flash::BlockNumbers& blocks)
{
    if (!m_firstAddress || m_high == m_low)
        return;
    // Without an authorisation the radio knows the component only by the tag in its code.
    const std::string product =
        m_authorised.empty() ? m_target->tagBetween(m_low, m_high) : m_authorised;
    Component component{.product = product.empty() ? "Unknown" : product,
                        .address = *m_firstAddress,
                        .status = m_damaged         ? statusChecksumInvalid
                                  : product.empty() ? statusNotValidated
                                                    : statusGood,
                        .network = m_target->layout().network,
                        .device = m_target->layout().device};
    m_log.event(
        component.product + " now stands in the " + placeText(*m_target) +
        (component.status == statusGood ? "" : ", status " + std::to_string(component.status)));
    m_memory.install(std::move(component), *m_target, blocks);
    forgetDownload();
}

} // namespace simulator
