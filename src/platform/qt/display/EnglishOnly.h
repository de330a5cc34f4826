#pragma once

namespace fldc {

/// Call before the QApplication is made: makes the toolkit speak as the program does, in English,
/// whatever the desktop's language: buttons, file dialogs, numbers and dates. Which characters
/// there are, and how they are typed, stays as the user has it.
void speakEnglishOnly();

} // namespace fldc
