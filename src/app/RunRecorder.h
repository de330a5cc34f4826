#pragma once

#include "certificate/Certificate.h"
#include "certificate/RunFacts.h"
#include "session/Listener.h"
#include "session/Narrator.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace fldc {

class clsDLManager;
class clsFile;
struct Platform;

/// Called with the certificate of a download or an erasure that has ended.
using CertificateTaker = std::function<void(const QJsonObject& certificate)>;

/// Listens to a manager and makes the certificate of each download and each erasure, however it
/// ends (but not for the exit codes 1 and 3, which no radio has seen). The certificate is made when
/// the line and the logs are closed, unless the connection is kept.
class RunRecorder final : public session::IListener {
public:
    /// Has the manager hash its files. Whoever adds the recorder to the manager's listeners lets it
    /// outlive the manager.
    RunRecorder(clsDLManager& manager, const Platform& platform, CertificateTaker take);

    void onEvent(const session::Event& event) noexcept override;

private:
    struct Run {
        RunFacts facts;
        Certificate certificate;
        session::Narrator narrator;
        session::Operation operation;
        std::vector<std::shared_ptr<clsFile>> images;
        std::chrono::steady_clock::time_point begun;
    };

    void follow(const session::Event& event);
    void begin(session::Operation operation);
    [[nodiscard]] CertificateFacts factsOf(session::Operation operation) const;
    [[nodiscard]] QString device() const;
    void hear(const session::Event& event);
    void end(Run& run) const;

    clsDLManager& m_manager;
    const Platform& m_platform;
    CertificateTaker m_take;
    std::unique_ptr<Run> m_run; ///< null while nothing runs that is recorded
    /// As it was read last: before an erasure, which does not read it again.
    std::optional<session::ConfigurationsRead> m_known;
};

} // namespace fldc
