#pragma once

#include <QString>

#include <exception>

namespace fldc {

/// Numbers of the failures that the component's own code raises. A failure of the operating system
/// carries its errno, a failure of the serial control one of the numbers in ISerialControl.h.
enum class FailureNumber : int {
    InvalidArgument = 5,
    Overflow = 6,
    OutOfMemory = 7,
    IndexOutOfRange = 9,
    TypeMismatch = 13,
    Internal = 51,
    FileNotFound = 53,
    ObjectNotSet = 91,
    ModalWindowOpen = 401,
    DuplicateKey = 457,
};

/// An unexpected failure: of the platform, or of the program itself. Failures that a radio, a file
/// or a user can cause in normal use are not raised but recorded in the last error.
class PlatformFailure : public std::exception {
public:
    PlatformFailure(int number, QString description);
    PlatformFailure(FailureNumber number, QString description);
    /// The failure with the standard description of its number.
    explicit PlatformFailure(FailureNumber number);
    /// The failure that the operating system reported as @p errorNumber (an errno value); the
    /// description is @p context, a colon and the system's own words.
    static PlatformFailure fromErrno(int errorNumber, const QString& context);

    [[nodiscard]] int number() const noexcept { return m_number; }
    [[nodiscard]] const QString& description() const noexcept { return m_description; }
    /// "Error " + number in decimal + @p separator + description.
    [[nodiscard]] QString text(const QString& separator) const;
    [[nodiscard]] const char* what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

/// Inside a catch block: the exception in flight as a PlatformFailure. An exception of another type
/// (out of memory, a library's own) is given the number that fits it.
[[nodiscard]] PlatformFailure currentFailure();

} // namespace fldc
