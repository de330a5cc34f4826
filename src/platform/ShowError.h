#pragma once

#include "platform/PlatformFailure.h"

namespace fldc {

class IMessageBox;

/// Makes @p messages the box that ShowError uses on this thread, for the life of the object.
class ErrorBoxScope {
public:
    explicit ErrorBoxScope(IMessageBox& messages);
    ~ErrorBoxScope();
    ErrorBoxScope(const ErrorBoxScope&) = delete;
    ErrorBoxScope& operator=(const ErrorBoxScope&) = delete;

private:
    IMessageBox* m_previous;
};

/// The shared error box: "Error " + number + " " + description with one OK button. Returns when it
/// is closed; the caller carries on with a default result. Without a box on this thread (a program
/// that uses the libraries alone) the text goes to the standard error output. Never throws.
void ShowError(const PlatformFailure& failure) noexcept;

} // namespace fldc
