#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace fldc {

/// What a file dialog starts with.
struct FileQuestion {
    /// Path of the file that is offered; empty for none. May have `\` between its folders.
    QString initialName;
    /// Pairs of a name and its patterns: "S records|*.srec;*.s1|All files|*.*".
    QString filter;
    /// Whether its window takes no input until the answer; one that something waits behind must.
    bool modal = true;
};

/// The desktop's file dialogs. They do not hold up the caller: the answer comes later, because
/// a radio may be in the middle of a conversation that must go on meanwhile.
class IFileDialogs {
public:
    virtual ~IFileDialogs() = default;

    /// Called once, from the event loop, with full paths, or with nothing when the user cancelled;
    /// not at all when the window that the dialog belongs to goes first, or when a dialog to save
    /// is asked for while one is open, which then comes to the front. Files to open are asked for
    /// in any case: an open dialog is cancelled for it. Must not throw.
    using Answer = std::function<void(const std::optional<QStringList>& paths)>;

    /// Asks for one or more existing files of one folder.
    virtual void chooseFilesToOpen(const FileQuestion& question, Answer answer) = 0;
    /// Asks for a file to be written, in an existing folder; a name without an ending gets that of
    /// the pattern that is chosen, where that is a single one. The user has confirmed that one that
    /// exists may be replaced.
    virtual void chooseFileToSave(const FileQuestion& question, Answer answer) = 0;
};

} // namespace fldc
