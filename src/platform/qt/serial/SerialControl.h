#pragma once

#include "platform/ISerialControl.h"
#include "platform/qt/serial/ILine.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace fldc {

class IEvents;
class IPortListing;

/// A serial line of this machine, or of another one (rfc2217://HOST:PORT), which the text of the
/// port decides when it is opened. What arrives is taken over while events are served, up to
/// 64 KiB; beyond that the driver or the network keeps it, and drops it as it must.
///
/// Failure numbers besides those of SerialFailure: 5 for a setting that is not understood, EIO for
/// a line that hung up, ETIMEDOUT when the line took or sent nothing more for too long.
class SerialControl final : public ISerialControl {
public:
    SerialControl(IPortListing& ports, IEvents& events);
    ~SerialControl() override;
    SerialControl(const SerialControl&) = delete;
    SerialControl& operator=(const SerialControl&) = delete;

    [[nodiscard]] int commPort() const override { return m_commPort; }
    /// The device behind the number is found at the first opening and kept until the number is set
    /// again: an adapter that is plugged or unplugged meanwhile renumbers the listing, but the
    /// line in use stays that of the radio that the user chose.
    void setCommPort(int number) override;

    [[nodiscard]] bool portOpen() const override { return m_line != nullptr; }
    void setPortOpen(bool open) override;

    [[nodiscard]] QString settings() const override { return m_settings; }
    void setSettings(const QString& settings) override;

    void setInputMode(int mode) override;
    void setInputLen(int bytes) override;

    [[nodiscard]] int inBufferCount() override;
    void setInBufferCount(int count) override;

    [[nodiscard]] QByteArray input() override;
    void output(const QByteArray& bytes) override;

    [[nodiscard]] std::chrono::milliseconds delay() const override;
    void setGiveUp(std::function<bool()> wanted) override { m_giveUp = std::move(wanted); }
    /// Who is told in words why a line of another machine can't be opened: its causes are more than
    /// the component's codes.
    void setComplaint(std::function<void(const QString& why)> told)
    {
        m_complaint = std::move(told);
    }

private:
    class Step;

    void open();
    void close();
    void connectLine(const QString& text);
    [[nodiscard]] std::unique_ptr<ILine> lineTo(const QString& text);
    void park(std::unique_ptr<ILine> line);
    ILine& openLine();
    ILine& liveLine();
    void receive(ILine& line);
    void lineLost(int error);
    [[noreturn]] void fail(int error);

    IPortListing& m_ports;
    IEvents& m_events;
    std::function<bool()> m_giveUp;
    std::function<void(const QString& why)> m_complaint;
    bool m_inStep = false; ///< one that may serve events
    int m_commPort = 1;
    QString m_devicePath;
    QString m_settings = QStringLiteral("9600,n,8,1");
    std::uint32_t m_speed = 9600;
    int m_inputLen = 1;
    QByteArray m_received;
    int m_lostError = 0; ///< errno of the hang-up; 0 while the line lives
    std::unique_ptr<ILine> m_line;
    std::shared_ptr<std::unique_ptr<ILine>> m_parked; ///< closed, and still connected
};

class SerialControlFactory final : public ISerialControlFactory {
public:
    /// @p events: served while a line of another machine is waited for.
    /// @p complaint: as in SerialControl::setComplaint().
    SerialControlFactory(IPortListing& ports, IEvents& events,
                         std::function<void(const QString& why)> complaint = {})
        : m_ports(ports), m_events(events), m_complaint(std::move(complaint))
    {
    }
    [[nodiscard]] std::shared_ptr<ISerialControl> create() override
    {
        auto control = std::make_shared<SerialControl>(m_ports, m_events);
        control->setComplaint(m_complaint);
        return control;
    }

private:
    IPortListing& m_ports;
    IEvents& m_events;
    std::function<void(const QString& why)> m_complaint;
};

} // namespace fldc
