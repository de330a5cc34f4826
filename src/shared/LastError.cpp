#include "shared/LastError.h"

#include "platform/PlatformFailure.h"

namespace fldc {

namespace {

QString errorStatus(std::int32_t number)
{
    return QStringLiteral("Error ") + QString::number(number) + QStringLiteral(" - ") +
           formatMessage(number);
}

} // namespace

LastError& lastError()
{
    thread_local LastError error;
    return error;
}

void LastError::setRuntimeError(const PlatformFailure& failure)
{
    m_code = Code::RuntimeError;
    m_detail = failure.text(QStringLiteral(" - "));
}

QString LastError::description() const
{
    return m_code == Code::RuntimeError ? m_detail : formatMessage(number());
}

QString formatMessage(std::int32_t number)
{
    const auto message = messageOf(number);
    if (!message)
        throw PlatformFailure(FailureNumber::InvalidArgument,
                              QStringLiteral("No message has the number %1").arg(number));
    if (number == static_cast<std::int32_t>(Code::FilesNotDownloaded))
        return *message + QStringLiteral("\r\n") + lastError().detail();
    return *message;
}

QString statusLine(const QString& successText)
{
    if (lastError().code() == Code::RuntimeError)
        return lastError().detail();
    return statusLineWithoutDetail(successText);
}

QString statusLineWithoutDetail(const QString& successText)
{
    return lastError().ok() ? successText : errorStatus(lastError().number());
}

} // namespace fldc
