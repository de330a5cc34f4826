#include "ui/logic/FileChoice.h"

#include "app/services/SettingsStore.h"
#include "manager/Operation.h"
#include "platform/IFileDialogs.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"
#include "ui/logic/DownloadWindow.h"
#include "ui/logic/RunningOutcome.h"

#include <algorithm>
#include <utility>

namespace fldc {

namespace {

constexpr auto firmwareFilter = u"S records|*.srec;*.s1;*.s2;*.s3;*.s4|All files|*.*";
constexpr auto exportFilter = u"Comma Separated Variable Files|*.csv|All files|*.*";

// Offered where the dialog last held firmware, which must not be written over.
constexpr QLatin1StringView exportName("Configuration.csv");

QString folderOf(const QString& path)
{
    return path.left(path.lastIndexOf(u'/') + 1);
}

// A path without its folder; what has no folder is a name already.
QString nameOf(const QString& path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString folderForm(const QStringList& paths)
{
    QString text = folderOf(paths.constFirst());
    if (text.size() > 1)
        text.chop(1);
    for (const QString& path : paths)
        text += QChar::Null + nameOf(path);
    return text;
}

} // namespace

QString fileListText(const QStringList& paths)
{
    if (paths.isEmpty())
        return {};
    const QString folder = folderOf(paths.constFirst());
    const bool oneFolder =
        std::ranges::all_of(paths, [&](const QString& path) { return folderOf(path) == folder; });
    // A lone path with "|" in it would be taken for two.
    const bool loneName = paths.size() == 1 && !paths.constFirst().contains(u'|');
    if (oneFolder && !folder.isEmpty() && !loneName)
        return folderForm(paths);
    return paths.join(u'|');
}

FileChoice::FileChoice(ISettingsFile& settings, IFileDialogs& dialogs)
    : m_settings(settings), m_dialogs(dialogs)
{
}

void FileChoice::SelectDownloadFile(DownloadWindow& window, Chosen chosen)
{
    window.setPassingStatus(displayText(Text::SelectingDownloadFile));
    m_fileName = ReadSetting(m_settings, lastFileSetting, {});
    m_holdsFirmware = true;
    m_dialogs.chooseFilesToOpen(question(firmwareFilter), answerFor(window, std::move(chosen)));
}

void FileChoice::SelectExportFile(DownloadWindow& window, Chosen chosen)
{
    window.setPassingStatus(displayText(Text::SelectingExportFile));
    FileQuestion asked = question(exportFilter);
    if (m_holdsFirmware && !asked.initialName.isEmpty())
        asked.initialName = folderOf(asked.initialName.replace(u'\\', u'/')) + exportName;
    asked.modal = !operationRuns();
    const auto took = [weak = weak_from_this(), chosen = std::move(chosen)](const QString& name) {
        if (const auto self = weak.lock(); self && !name.isEmpty())
            self->m_holdsFirmware = false;
        chosen(name);
    };
    m_dialogs.chooseFileToSave(asked, answerFor(window, took));
}

IFileDialogs::Answer FileChoice::answerFor(DownloadWindow& window, Chosen chosen)
{
    return [weakSelf = weak_from_this(), weakWindow = window.weak_from_this(),
            chosen = std::move(chosen)](const std::optional<QStringList>& paths) {
        const auto self = weakSelf.lock();
        const auto heldWindow = weakWindow.lock();
        if (self && heldWindow)
            self->take(*heldWindow, paths, chosen);
    };
}

// Of several names that the dialog held it offers the first.
FileQuestion FileChoice::question(const char16_t* filter) const
{
    const auto parts = m_fileName.split(QChar::Null);
    const QString first =
        parts.size() > 1 ? parts.at(0) + u'/' + parts.at(1) : m_fileName.section(u'|', 0, 0);
    return {first, QString::fromUtf16(filter)};
}

void FileChoice::take(DownloadWindow& window, const std::optional<QStringList>& paths,
                      const Chosen& chosen)
{
    const QString text = paths ? fileListText(*paths) : QString();
    if (!text.isEmpty())
        m_fileName = text;
    showOutcome(window, text.isEmpty()
                            ? (paths ? Code::NoFileSelected : Code::FileSelectionCancelled)
                            : Code::Success);
    chosen(text);
}

void FileChoice::showOutcome(DownloadWindow& window, Code code)
{
    const RunningOutcome outcome;
    lastError().set(code);
    if (code == Code::FileSelectionCancelled)
        window.setPassingStatus(QStringLiteral("File selection cancelled"));
    else if (code == Code::NoFileSelected)
        window.setPassingStatus(QStringLiteral("No file has been selected"));
}

} // namespace fldc
