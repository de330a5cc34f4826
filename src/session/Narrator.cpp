#include "session/Narrator.h"

#include "session/Names.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fldc::session {

using namespace Qt::StringLiterals;

namespace {

struct StatusName {
    std::int32_t status;
    Text text;
};

constexpr std::array statusNames{
    StatusName{0, Text::Ok},
    StatusName{1, Text::NoCodeSegments},
    StatusName{2, Text::ChecksumInvalid},
    StatusName{3, Text::NoCodeComponent},
    StatusName{255, Text::CodeNotValidated},
};

QVariant number(std::integral auto value)
{
    return static_cast<qint64>(value);
}

const QVariant unknown = QVariant::fromValue(nullptr);

// The component writes "\\" between folders.
QString nativePath(QString path)
{
    return path.replace(u'\\', u'/');
}

QVariantMap fieldsOf(const Component& component)
{
    return {{u"product"_s, component.product},
            {u"status"_s, number(component.status)},
            {u"status_text"_s, StatusText(component.status)},
            {u"network"_s, number(component.network)},
            {u"device"_s, number(component.device)},
            {u"erasable"_s, component.erasable}};
}

} // namespace

double Transfer::percent() const
{
    if (bytes >= total)
        return 100;
    return 100 * static_cast<double>(bytes) / static_cast<double>(total);
}

Narrator::Narrator(std::function<std::int32_t(const TargetBegun&)> fileOf)
    : m_fileOf(std::move(fileOf))
{
}

std::optional<Telling> Narrator::tell(const Event& event, milliseconds now)
{
    m_now = now;
    return std::visit(
        [this](const auto& each) -> Told {
            if constexpr (requires { on(each); })
                return on(each);
            else
                return std::nullopt;
        },
        event);
}

std::optional<Telling> Narrator::on(const StepTaken& event)
{
    if (event.step != Step::Restart || event.outcome != Outcome::Done)
        return std::nullopt;
    return Telling{"restarted"_L1, {}};
}

std::optional<Telling> Narrator::on(const PowerCycleRequired& event)
{
    return Telling{"power-cycle-required"_L1, {{u"f1_key"_s, event.f1Key}}};
}

std::optional<Telling> Narrator::on(const LoggedOn& event)
{
    return Telling{"radio"_L1,
                   {{u"identifier"_s, event.identifier ? QVariant(*event.identifier) : unknown},
                    {u"needs_boot_application"_s, event.needsBootApplication}}};
}

std::optional<Telling> Narrator::on(const BootApplicationSent& event)
{
    return Telling{"boot-application"_L1,
                   {{u"file"_s, nativePath(event.file)}, {u"bytes"_s, number(event.bytes)}}};
}

std::optional<Telling> Narrator::on(const SpeedAgreed& event)
{
    return Telling{"speed"_L1, {{u"baud"_s, number(event.baud)}}};
}

std::optional<Telling> Narrator::on(const ConfigurationsRead& event)
{
    QList<QVariantMap> components;
    for (const Component& each : event.components)
        components.append(fieldsOf(each));
    return Telling{"configuration"_L1,
                   {{u"when"_s, nameOf(event.when).toString()},
                    {u"components"_s, QVariant::fromValue(components)}}};
}

std::optional<Telling> Narrator::on(const TargetBegun& event)
{
    m_transfer = {};
    m_transfer.file = m_fileOf(event);
    m_transfer.tag = event.tag;
    m_rate = {};
    m_rate.add(m_now, 0);
    m_lastTold.reset();
    return Telling{"target"_L1,
                   {{u"file"_s, number(m_transfer.file)},
                    {u"tag"_s, event.tag},
                    {u"network"_s, event.place ? number(event.place->network) : unknown},
                    {u"device"_s, event.place ? number(event.place->device) : unknown}}};
}

std::optional<Telling> Narrator::on(const BlocksDone& event)
{
    QList<qint64> blocks;
    for (const std::uint16_t block : event.blocks)
        blocks.append(block);
    return Telling{"blocks"_L1,
                   {{u"action"_s, nameOf(event.action).toString()},
                    {u"blocks"_s, QVariant::fromValue(blocks)}}};
}

std::optional<Telling> Narrator::on(const TableBegun& event)
{
    return Telling{"table"_L1,
                   {{u"address"_s, number(event.address)},
                    {u"bytes"_s, number(event.bytes)},
                    {u"wire_bytes"_s, number(event.wireBytes)},
                    {u"compressed"_s, event.compressed}}};
}

std::optional<Telling> Narrator::on(const DataProgress& event)
{
    m_rate.add(m_now, event.bytes);
    const bool isLast = event.bytes >= event.total;
    if (!isLast && m_lastTold && m_now - *m_lastTold < progressInterval)
        return std::nullopt;
    m_lastTold = m_now;
    m_transfer.bytes = event.bytes;
    m_transfer.total = event.total;
    m_transfer.bytesPerSecond = m_rate.bytesPerSecond(m_now);
    m_transfer.secondsLeft = isLast ? std::optional(0.0) : m_rate.secondsLeft(m_now, event.total);
    const auto& left = m_transfer.secondsLeft;
    return Telling{"progress"_L1,
                   {{u"file"_s, number(m_transfer.file)},
                    {u"tag"_s, m_transfer.tag},
                    {u"percent"_s, number(static_cast<std::int32_t>(m_transfer.percent()))},
                    {u"bytes"_s, number(event.bytes)},
                    {u"total"_s, number(event.total)},
                    {u"bytes_per_second"_s, m_transfer.bytesPerSecond},
                    {u"seconds_left"_s, left ? QVariant(*left) : unknown}}};
}

std::optional<Telling> Narrator::on(const CommandRepeated& event)
{
    return Telling{"retry"_L1,
                   {{u"command"_s, event.name},
                    {u"attempt"_s, number(event.attempt)},
                    {u"reason"_s, formatMessage(static_cast<int>(event.reason))}}};
}

std::optional<Telling> Narrator::on(const UnexpectedBytes& event)
{
    return Telling{"unexpected"_L1,
                   {{u"hex"_s, QString::fromLatin1(event.bytes.toHex().toUpper())},
                    {u"looks_like"_s, nameOf(event.looksLike).toString()},
                    {u"text"_s, printable(QString::fromLatin1(event.bytes))}}};
}

QString StatusText(std::int32_t status)
{
    const auto* found = std::ranges::find(statusNames, status, &StatusName::status);
    return found == statusNames.end() ? QString::number(status) : displayText(found->text);
}

QString printable(const QString& text)
{
    QString clean = text;
    for (QChar& character : clean) {
        if (character != u'\n' && character.category() == QChar::Other_Control)
            character = QChar::ReplacementCharacter;
    }
    return clean;
}

} // namespace fldc::session
