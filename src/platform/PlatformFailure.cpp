#include "platform/PlatformFailure.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace fldc {

namespace {

struct StandardDescription {
    FailureNumber number;
    const char* text;
};

constexpr std::array standardDescriptions{
    StandardDescription{FailureNumber::InvalidArgument, "Invalid procedure call or argument"},
    StandardDescription{FailureNumber::Overflow, "Overflow"},
    StandardDescription{FailureNumber::OutOfMemory, "Out of memory"},
    StandardDescription{FailureNumber::IndexOutOfRange, "Subscript out of range"},
    StandardDescription{FailureNumber::TypeMismatch, "Type mismatch"},
    StandardDescription{FailureNumber::Internal, "Internal error"},
    StandardDescription{FailureNumber::FileNotFound, "File not found"},
    StandardDescription{FailureNumber::ObjectNotSet, "Object variable not set"},
    StandardDescription{FailureNumber::ModalWindowOpen,
                        "Can't show non-modal form when modal form is displayed"},
    StandardDescription{FailureNumber::DuplicateKey,
                        "This key is already associated with an element of this collection"},
};

QString standardDescription(FailureNumber number)
{
    const auto* found =
        std::ranges::find(standardDescriptions, number, &StandardDescription::number);
    return found == standardDescriptions.end() ? QString() : QString::fromLatin1(found->text);
}

} // namespace

PlatformFailure::PlatformFailure(int number, QString description)
    : m_number(number), m_description(std::move(description)), m_what(m_description.toUtf8())
{
}

PlatformFailure::PlatformFailure(FailureNumber number, QString description)
    : PlatformFailure(static_cast<int>(number), std::move(description))
{
}

PlatformFailure::PlatformFailure(FailureNumber number)
    : PlatformFailure(number, standardDescription(number))
{
}

PlatformFailure PlatformFailure::fromErrno(int errorNumber, const QString& context)
{
    return {errorNumber, context + QStringLiteral(": ") + qt_error_string(errorNumber)};
}

QString PlatformFailure::text(const QString& separator) const
{
    return QStringLiteral("Error ") + QString::number(m_number) + separator + m_description;
}

PlatformFailure currentFailure()
{
    try {
        throw;
    } catch (const PlatformFailure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return PlatformFailure(FailureNumber::OutOfMemory);
    } catch (const std::exception& failure) {
        return {FailureNumber::Internal, QString::fromUtf8(failure.what())};
    } catch (...) {
        return PlatformFailure(FailureNumber::Internal);
    }
}

} // namespace fldc
