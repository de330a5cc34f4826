#include "automation/SessionInterface.h"

#include "automation/BusNames.h"
#include "manager/clsDLManager.h"
#include "session/Names.h"

#include <QDBusMetaType>
#include <QDateTime>
#include <QStringList>

#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

// Of the events' keys, as in the lines of JSON.
constexpr qint64 schema = 1;
const QString sessionInterface = interfaceName("Session"_L1);

} // namespace

SessionInterface::SessionInterface(clsDLManager& manager, Surroundings surroundings)
    : m_manager(manager), m_surroundings(std::move(surroundings)),
      m_narrator(
          [this](const session::TargetBegun& begun) { return m_manager.fileNumber(begun.name); }),
      m_values{{u"Operation"_s, QString()},
               {u"State"_s, textOf(session::State::Untouched).name.toString()},
               {u"Percentage"_s, 0.0},
               {u"BytesPerSecond"_s, 0.0},
               {u"SecondsLeft"_s, -1.0},
               {u"LineSpeed"_s, quint32(0)},
               {u"LastResult"_s, 0},
               {u"LastResultText"_s, QString()},
               {u"Advice"_s, QString()},
               {u"Holder"_s, QString()}}
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    m_clock.start();
    m_manager.addListener(*this);
    QObject::connect(&m_manager, &clsDLManager::LoadBegun, &m_manager,
                     [this] { begin(u"load"_s); });
    QObject::connect(&m_manager, &clsDLManager::OperationCompleted, &m_manager,
                     [this](int code, const QString& message) { complete(code, message); });
}

SessionInterface::~SessionInterface()
{
    m_manager.removeListener(*this);
}

void SessionInterface::onEvent(const session::Event& event) noexcept
{
    try {
        follow(event);
        tellChanges();
    } catch (...) {
        // What can't be told must not leave a radio half written: the operation goes on.
        m_changed.clear();
    }
}

void SessionInterface::follow(const session::Event& event)
{
    m_radio = fold(m_radio, event);
    if (const auto* started = std::get_if<session::OperationStarted>(&event))
        begin(nameOf(started->operation).toString());
    else if (const auto* opened = std::get_if<session::LineOpened>(&event))
        set("LineSpeed", opened->baud);
    else if (const auto* agreed = std::get_if<session::SpeedAgreed>(&event))
        set("LineSpeed", agreed->baud);
    set("State", textOf(stateOf(m_radio)).name.toString());

    const auto told = m_narrator.tell(event, session::Narrator::milliseconds(m_clock.elapsed()));
    if (!told)
        return;
    if (std::holds_alternative<session::DataProgress>(event))
        showTransfer();
    tellEvent(*told);
}

// The bus has no value for "not known": such a key is left out.
void SessionInterface::tellEvent(session::Telling told)
{
    auto& fields = told.fields;
    fields.removeIf([](const auto& field) {
        return field.value().metaType() == QMetaType::fromType<std::nullptr_t>();
    });
    fields.insert(u"type"_s, QString(told.kind));
    fields.insert(u"time"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    m_surroundings.send(sessionInterface, "Event", {fields});
}

void SessionInterface::begin(const QString& operation)
{
    set("Operation", operation);
    set("Holder", m_surroundings.holder());
    set("Percentage", 0.0);
    set("BytesPerSecond", 0.0);
    set("SecondsLeft", -1.0);
    tellChanges();
    m_begun.start();
    tellEvent({"started"_L1, {{u"schema"_s, schema}, {u"command"_s, operation}}});
}

// At most ten times a second, whatever the number of targets.
void SessionInterface::showTransfer()
{
    const qint64 now = m_clock.elapsed();
    if (now - m_transferTold < session::Narrator::progressInterval.count())
        return;
    m_transferTold = now;
    const session::Transfer& transfer = m_narrator.transfer();
    set("Percentage", transfer.percent());
    set("BytesPerSecond", transfer.bytesPerSecond);
    set("SecondsLeft", transfer.secondsLeft.value_or(-1.0));
}

void SessionInterface::complete(int code, const QString& message)
{
    // What failed before it touched a radio says nothing of the radio's state.
    const bool isLoad = value(u"Operation"_s) == u"load"_s;
    const session::State state = stateOf(m_radio);
    const QString advice =
        adviceOf(isLoad && code != 0 ? session::State::Untouched : state, static_cast<Code>(code))
            .toString();
    const QString operation = value(u"Operation"_s).toString();
    const session::Transfer& transfer = m_narrator.transfer();
    if (transfer.total > 0 && operation == u"download"_s)
        set("Percentage", transfer.percent());
    set("Operation", QString());
    set("Holder", QString());
    set("BytesPerSecond", 0.0);
    set("SecondsLeft", -1.0);
    set("LastResult", code);
    set("LastResultText", message);
    if (!isLoad || code != 0)
        set("Advice", advice);
    tellChanges();
    tellEvent({"result"_L1,
               {{u"command"_s, operation},
                {u"ok"_s, code == 0},
                {u"code"_s, qint64(code)},
                {u"message"_s, message},
                {u"advice"_s, advice},
                {u"radio"_s, textOf(state).name.toString()},
                {u"seconds"_s, static_cast<double>(m_begun.elapsed()) / 1000}}});
    m_surroundings.send(sessionInterface, "Completed",
                        {code, message, textOf(state).name.toString()});
}

void SessionInterface::set(const char* property, const QVariant& value)
{
    QVariant& present = m_values[QString::fromLatin1(property)];
    if (present == value)
        return;
    present = value;
    m_changed.insert(QString::fromLatin1(property), value);
}

void SessionInterface::tellChanges()
{
    if (m_changed.isEmpty())
        return;
    m_surroundings.send(propertiesInterface, "PropertiesChanged",
                        {sessionInterface, std::exchange(m_changed, {}), QStringList()});
}

} // namespace fldc
