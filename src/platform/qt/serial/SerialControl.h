#pragma once

#include "platform/ISerialControl.h"
#include "platform/qt/serial/SerialLine.h"

#include <QSocketNotifier>

#include <cstdint>
#include <memory>

namespace fldc {

class IPortListing;

/// A serial line of this machine. What arrives is taken over while events are served, up to 64 KiB;
/// beyond that the driver keeps it, and drops it as it must.
///
/// Failure numbers besides those of SerialFailure: 5 for a setting that is not understood, EIO for
/// a line that hung up, ETIMEDOUT when the line took or sent nothing more for too long.
class SerialControl final : public ISerialControl {
public:
    explicit SerialControl(IPortListing& ports);
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

private:
    void open();
    void close();
    SerialLine& openLine();
    SerialLine& liveLine();
    void receive(SerialLine& line);
    void lineLost(int error);
    [[noreturn]] void fail(int error);

    IPortListing& m_ports;
    int m_commPort = 1;
    QString m_devicePath;
    QString m_settings = QStringLiteral("9600,n,8,1");
    std::uint32_t m_speed = 9600;
    int m_inputLen = 1;
    QByteArray m_received;
    int m_lostError = 0; ///< errno of the hang-up; 0 while the line lives
    std::unique_ptr<SerialLine> m_line;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< declared after the line that it watches
};

class SerialControlFactory final : public ISerialControlFactory {
public:
    explicit SerialControlFactory(IPortListing& ports) : m_ports(ports) {}
    [[nodiscard]] std::shared_ptr<ISerialControl> create() override
    {
        return std::make_shared<SerialControl>(m_ports);
    }

private:
    IPortListing& m_ports;
};

} // namespace fldc
