#pragma once

#include "platform/IFileDialogs.h"

class QFileDialog;

namespace fldc {

/// The desktop's own file dialogs, modal for the window that is active when they are asked for.
class FileDialogs final : public IFileDialogs {
public:
    void chooseFilesToOpen(const FileQuestion& question, Answer answer) override;
    void chooseFileToSave(const FileQuestion& question, Answer answer) override;
};

/// The name filters of a dialog for the pairs in @p filter: "S records (*.srec *.s1)".
[[nodiscard]] QStringList nameFilters(const QString& filter);

} // namespace fldc
