#pragma once

#include "manager/clsDLManager.h"

#include "app/services/clsLogFile.h"
#include "manager/IDownloadWindow.h"
#include "platform/PlatformFailure.h"
#include "port/IPort.h"
#include "protocol/clsProtocol.h"
#include "radio/clsRadio.h"

namespace fldc {

/// Result of an operation that was refused because another one runs on the thread.
inline constexpr auto refusedResult = static_cast<std::int16_t>(Code::PortInUseHere);

/// What one operation works with. Held by copy: while the operation waits, a client may drop the
/// window or choose another port.
struct clsDLManager::Session {
    std::shared_ptr<IDownloadWindow> heldWindow;
    std::shared_ptr<IPort> heldPort;
    std::shared_ptr<clsProtocol> protocol;
    std::shared_ptr<clsRadio> radio;
    std::shared_ptr<clsLogFile> downloadLog;      ///< null unless this operation opened it
    std::shared_ptr<clsLogFile> configurationLog; ///< null unless this operation opened it

    bool lineOpen = false; ///< the operation has a line to talk over

    /// These throw PlatformFailure (object not set) when the manager has none.
    [[nodiscard]] IDownloadWindow& window() const { return held(heldWindow); }
    [[nodiscard]] IPort& port() const { return held(heldPort); }
    [[nodiscard]] clsRadio& model() const { return held(radio); }

    /// Opens the logs that are not open, on the port's name.
    void openDownloadLog();
    void openLogs();
    /// Opens the line, unless an operation before has kept it open. False when there is none to
    /// talk over; the last error says why.
    [[nodiscard]] bool openLine();

private:
    template <class T>
    [[nodiscard]] static T& held(const std::shared_ptr<T>& object)
    {
        if (!object)
            throw PlatformFailure(FailureNumber::ObjectNotSet);
        return *object;
    }
};

} // namespace fldc
