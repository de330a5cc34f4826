#include "ui/logic/session/RunNotes.h"

#include "firmware/clsFile.h"
#include "firmware/colFiles.h"
#include "manager/clsDLManager.h"
#include "platform/IClock.h"
#include "platform/Platform.h"
#include "shared/LastError.h"
#include "ui/logic/DownloadWindow.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array phaseTexts{u"",
                                u"Reading files",
                                u"Opening the port",
                                u"Resetting the radio",
                                u"Waiting for the radio to be switched off and on",
                                u"Sending the boot application",
                                u"Searching the line speed",
                                u"Reading the configuration",
                                u"Unlocking flash",
                                u"Erasing flash",
                                u"Writing",
                                u"Locking flash",
                                u"Restarting the radio"};

static_assert(phaseTexts.size() == static_cast<std::size_t>(Phase::Restarting) + 1,
              "a text for each phase");

// What is begun when a step has been sent. Data name their phase with their table.
constexpr std::array stepPhases{Phase::Resetting, Phase::Unlocking, Phase::Erasing,
                                Phase::Writing,   Phase::Locking,   Phase::Restarting};

// Below this a kilobyte is too coarse, in bytes.
constexpr std::int64_t smallTotal = 10000;

QString kiloBytes(double bytes, int decimals)
{
    return QString::number(bytes / 1000, 'f', decimals);
}

QString transferText(int percent, const session::Transfer& transfer)
{
    QStringList parts{u"%1 %"_s.arg(percent)};
    const int decimals = transfer.total < smallTotal ? 1 : 0;
    if (transfer.total > 0)
        parts.append(
            u"%1 of %2 kB"_s.arg(kiloBytes(static_cast<double>(transfer.bytes), decimals),
                                 kiloBytes(static_cast<double>(transfer.total), decimals)));
    if (transfer.bytesPerSecond > 0)
        parts.append(kiloBytes(transfer.bytesPerSecond, 1) + u" kB/s"_s);
    if (transfer.secondsLeft)
        parts.append(durationText(std::chrono::round<std::chrono::seconds>(
                         std::chrono::duration<double>(*transfer.secondsLeft))) +
                     u" left"_s);
    return parts.join(u" · "_s);
}

} // namespace

QString durationText(std::chrono::seconds duration)
{
    const auto minutes = duration.count() / 60;
    const auto seconds = duration.count() % 60;
    if (minutes == 0)
        return u"%1 s"_s.arg(seconds);
    return u"%1 min %2 s"_s.arg(minutes).arg(seconds, 2, 10, QChar(u'0'));
}

bool Run::flashAtRisk() const
{
    return state() >= session::State::Erased && state() <= session::State::Locked;
}

RunNotes::RunNotes(DownloadWindow& window, const Platform& platform, Listeners listeners)
    : m_window(&window), m_platform(platform), m_listeners(std::move(listeners)),
      m_manager(window.downLoadManager()),
      m_narrator([this](const session::TargetBegun& begun) { return begun.file; })
{
    m_manager->addListener(*this);
    QObject::connect(m_manager, &clsDLManager::LoadBegun, &m_connections, [this] {
        m_refused.clear();
        begin(std::nullopt);
    });
    QObject::connect(m_manager, &clsDLManager::LoadAdvanced, &m_connections, [this](int percent) {
        m_run.percentRead = percent;
        m_listeners.changed();
    });
    QObject::connect(m_manager, &clsDLManager::FileNotLoaded, &m_connections,
                     [this](const QString& path, const QString& reason) {
                         m_refused.append(path.section(u'/', -1).section(u'\\', -1) + u": "_s +
                                          reason);
                     });
    QObject::connect(m_manager, &clsDLManager::OperationCompleted, &m_connections,
                     [this](int code, const QString& message) { complete(code, message); });
}

RunNotes::~RunNotes()
{
    detach();
}

// A manager that has gone took the window's reference to it along.
void RunNotes::detach()
{
    if (m_manager == nullptr)
        return;
    m_manager->disconnect(&m_connections);
    if (m_window->downLoadManager() == m_manager)
        m_manager->removeListener(*this);
    m_manager = nullptr;
    m_window = nullptr;
    m_run.phase = Phase::Idle;
}

std::optional<int> RunNotes::percent() const
{
    if (m_run.phase == Phase::ReadingFiles)
        return m_run.percentRead;
    return m_run.phase == Phase::Writing && m_window != nullptr
               ? std::optional(m_window->progress())
               : std::nullopt;
}

void RunNotes::refuse(session::Operation operation)
{
    m_refused.clear();
    begin(operation);
    complete(lastError().number(), formatMessage(lastError().number()));
}

QString RunNotes::progressText() const
{
    if (!running() || m_window == nullptr)
        return {};
    if (m_run.phase == Phase::Writing)
        return transferText(m_window->progress(), m_narrator.transfer());
    const auto passed =
        std::chrono::floor<std::chrono::seconds>(m_platform.clock.monotonic() - m_run.phaseBegun);
    QString text = QString::fromUtf16(phaseTexts.at(static_cast<std::size_t>(m_run.phase)));
    if (const auto share = percent())
        text += u" · %1 %"_s.arg(*share);
    return passed.count() == 0 ? text : text + u" · "_s + durationText(passed);
}

QString RunNotes::fileText() const
{
    if (!running() || m_run.image == 0 || m_run.image > m_run.images.size())
        return {};
    const ImageNote& image = m_run.images.at(m_run.image - 1);
    return u"File %1 of %2: %3, %4"_s.arg(m_run.image)
        .arg(m_run.images.size())
        .arg(image.file, image.tag);
}

void RunNotes::onEvent(const session::Event& event) noexcept
{
    try {
        m_run.radio = fold(m_run.radio, event);
        const bool told = m_narrator
                              .tell(event, std::chrono::duration_cast<std::chrono::milliseconds>(
                                               m_platform.clock.monotonic()))
                              .has_value();
        std::visit([this](const auto& each) { on(each); }, event);
        // Progress comes more often than anybody can read it.
        if (told || !std::holds_alternative<session::DataProgress>(event))
            m_listeners.changed();
    } catch (...) {
        // What can't be shown must not leave a radio half written: the operation goes on.
    }
}

void RunNotes::begin(std::optional<session::Operation> operation)
{
    m_run = {};
    m_run.operation = operation;
    m_run.begun = m_platform.clock.monotonic();
    enter(operation ? Phase::OpeningPort : Phase::ReadingFiles);
    if (!operation)
        m_listeners.changed();
}

void RunNotes::enter(Phase phase)
{
    if (phase == m_run.phase)
        return;
    m_run.phase = phase;
    m_run.phaseBegun = m_platform.clock.monotonic();
}

void RunNotes::complete(std::int32_t code, const QString& message)
{
    if (!running())
        return;
    m_run.ended = m_platform.clock.monotonic();
    m_run.phase = Phase::Idle;
    m_run.code = code;
    m_run.message = message;
    m_run.refused = m_refused;
    if (code != 0 && m_run.operation) {
        const IPortListing::Details port = m_window->chosenPort();
        if (!port.obstacle.isEmpty())
            m_run.portObstacle = QString(port.name + u' ' + port.obstacle).trimmed();
        m_run.portRemedy = port.remedy;
    }
    m_listeners.ended();
}

std::vector<ImageNote> RunNotes::loadedImages() const
{
    std::vector<ImageNote> images;
    if (const auto files = m_manager->loadedFiles()) {
        for (const auto& file : files->items())
            images.push_back({file->Name(), file->SourcePath().section(u'/', -1).section(u'\\', -1),
                              file->TagName(), 0, 0});
    }
    return images;
}

QStringList RunNotes::markedComponents() const
{
    QStringList marked;
    for (const ConfigurationRow& row : m_window->configurations().rows()) {
        if (row.mark == RowMark::Marked)
            marked.append(row.texts.at(1));
    }
    return marked;
}

void RunNotes::on(const session::OperationStarted& event)
{
    // Begun anew, with what the first event has made of the radio.
    begin(event.operation);
    m_run.radio = {};
    if (event.operation == session::Operation::Download)
        m_run.images = loadedImages();
    else if (event.operation == session::Operation::Erase)
        m_run.marked = markedComponents();
}

void RunNotes::on(const session::StepTaken& event)
{
    if (event.outcome == session::Outcome::Sent && event.step != session::Step::Data)
        enter(stepPhases.at(static_cast<std::size_t>(event.step)));
}

void RunNotes::on(const session::PowerCycleRequired& /*event*/)
{
    enter(Phase::WaitingForPower);
}

void RunNotes::on(const session::LoggedOn& event)
{
    m_run.identifier = event.identifier.value_or(QString());
    if (event.needsBootApplication)
        return enter(Phase::SendingBootApplication);
    on(session::BootApplicationSent{});
}

void RunNotes::on(const session::BootApplicationSent& /*event*/)
{
    enter(m_run.operation == session::Operation::Download ? Phase::SearchingSpeed
                                                          : Phase::ReadingConfiguration);
}

void RunNotes::on(const session::SpeedAgreed& event)
{
    m_run.baud = event.baud;
    enter(Phase::ReadingConfiguration);
}

void RunNotes::on(const session::ConfigurationsRead& event)
{
    (event.when == session::Reading::After ? m_run.after : m_run.before) = event.components;
}

void RunNotes::on(const session::TargetBegun& event)
{
    const auto image = std::ranges::find(m_run.images, event.name, &ImageNote::name);
    if (image == m_run.images.end())
        return;
    ++image->begun;
    m_run.image = static_cast<std::size_t>(image - m_run.images.begin()) + 1;
}

void RunNotes::on(const session::BlocksDone& event)
{
    if (event.action != session::BlockAction::Locked)
        return;
    if (m_run.image > 0 && m_run.image <= m_run.images.size())
        ++m_run.images.at(m_run.image - 1).locked;
    // Until something else is sent: the next target, or what the radio has in it now.
    enter(Phase::ReadingConfiguration);
}

void RunNotes::on(const session::TableBegun& /*event*/)
{
    enter(Phase::Writing);
}

void RunNotes::on(const session::CommandRepeated& /*event*/)
{
    ++m_run.retries;
}

void RunNotes::on(const session::UnexpectedBytes& /*event*/)
{
    ++m_run.unexpected;
}

} // namespace fldc
