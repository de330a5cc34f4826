#include "app/RunRecorder.h"

#include "certificate/JsonObject.h"
#include "certificate/RunObjects.h"
#include "certificate/Verdict.h"
#include "firmware/colFiles.h"
#include "manager/clsDLManager.h"
#include "platform/IPortListing.h"
#include "session/Names.h"

#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

std::vector<FileImage> numbered(const clsDLManager& manager,
                                const std::vector<std::shared_ptr<clsFile>>& images)
{
    std::vector<FileImage> files;
    files.reserve(images.size());
    for (const auto& image : images)
        files.push_back({manager.fileNumber(image->Name()), image});
    return files;
}

Outcome outcomeOf(const RunFacts& facts, session::Operation operation,
                  const std::vector<std::shared_ptr<clsFile>>& images)
{
    Outcome outcome = operation == session::Operation::Download ? verdictOfDownload(facts, images)
                                                                : verdictOfErasure(facts);
    if (facts.ending().code == Code::UserCancelled)
        outcome.exit = foremost(outcome.exit, Exit::Interrupted);
    return outcome;
}

} // namespace

RunRecorder::RunRecorder(clsDLManager& manager, const Platform& platform, CertificateTaker take)
    : m_manager(manager), m_platform(platform), m_take(std::move(take))
{
    m_manager.hashFiles();
}

void RunRecorder::onEvent(const session::Event& event) noexcept
{
    try {
        follow(event);
    } catch (...) {
        // What can't be recorded must not leave a radio half written: the operation goes on.
        if (m_run)
            m_run->facts.markIncomplete();
    }
}

void RunRecorder::follow(const session::Event& event)
{
    if (const auto* started = std::get_if<session::OperationStarted>(&event))
        begin(started->operation);
    if (const auto* read = std::get_if<session::ConfigurationsRead>(&event))
        m_known = *read;
    if (!m_run)
        return;
    m_run->facts.follow(event);
    hear(event);
    if (std::holds_alternative<session::OperationEnded>(event)) {
        const auto run = std::exchange(m_run, nullptr);
        end(*run);
    }
}

void RunRecorder::begin(session::Operation operation)
{
    m_run.reset();
    if (operation != session::Operation::Download && operation != session::Operation::Erase)
        return;
    std::vector<std::shared_ptr<clsFile>> images;
    if (const auto files = m_manager.loadedFiles();
        files && operation == session::Operation::Download)
        images = files->items();
    const auto fileOf = [this](const session::TargetBegun& begun) {
        return m_manager.fileNumber(begun.name);
    };
    m_run = std::make_unique<Run>(Run{RunFacts(fileOf),
                                      Certificate(factsOf(operation), numbered(m_manager, images)),
                                      session::Narrator(fileOf), operation, images, Clock::now()});
}

CertificateFacts RunRecorder::factsOf(session::Operation operation) const
{
    RunStart start{nameOf(operation).toString(), {}, device(), {}, m_platform.program.version()};
    if (const QString port = m_manager.portName(); !port.isEmpty())
        start.port = u"COM"_s + port;
    if (operation == session::Operation::Download) {
        for (const auto& [path, content] : m_manager.loadedList()) {
            NamedFile file{QString(path).replace(u'\\', u'/'), {}, std::nullopt};
            if (content) {
                file.sha256 = content->sha256;
                file.bytes = content->bytes;
            }
            start.files.append(namedFileObject(file));
        }
    }
    return {{}, {}, utcNow(), startedObject(start), adapterObject(start.device)};
}

QString RunRecorder::device() const
{
    try {
        return m_platform.ports.devicePath(m_manager.portName().toInt());
    } catch (...) {
        return {}; // the list of ports can't be read: what is known without it is recorded
    }
}

void RunRecorder::hear(const session::Event& event)
{
    const auto* chosen = std::get_if<session::ErasureChosen>(&event);
    const bool knowsBefore = chosen != nullptr && !chosen->components.empty() && m_known;
    const auto now =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_run->begun);
    const auto told =
        knowsBefore
            ? m_run->narrator.tell(
                  session::ConfigurationsRead{session::Reading::Before, m_known->components}, now)
            : m_run->narrator.tell(event, now);
    if (!told)
        return;
    const ObjectKind& kind = kindNamed(told->kind);
    m_run->certificate.hear(kind, makeObject(kind, told->fields));
}

void RunRecorder::end(Run& run) const
{
    const QJsonObject result = resultObject(nameOf(run.operation).toString(),
                                            outcomeOf(run.facts, run.operation, run.images),
                                            secondsBetween(run.begun, Clock::now()));
    if (concernsARadio(result))
        m_take(run.certificate.toJson(result));
}

} // namespace fldc
