#include "platform/qt/display/FileDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

#include <utility>

namespace fldc {

namespace {

// The window that the user works with; a dialog may be asked for by a click that did not activate
// it.
QWidget* ownerWindow()
{
    if (QWidget* active = QApplication::activeWindow())
        return active;
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->isVisible() && each->windowType() == Qt::Window)
            return each;
    }
    return nullptr;
}

// A folder that is gone is not offered; the dialog then starts where it was last.
void offer(QFileDialog& dialog, const QString& initialName)
{
    const QFileInfo file(QString(initialName).replace(u'\\', u'/'));
    if (initialName.isEmpty() || !file.dir().exists())
        return;
    dialog.setDirectory(file.dir());
    dialog.selectFile(file.fileName());
}

void ask(QFileDialog* dialog, const FileQuestion& question, IFileDialogs::Answer answer)
{
    dialog->setObjectName(QStringLiteral("cdgFileToDownload"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setNameFilters(nameFilters(question.filter));
    offer(*dialog, question.initialName);
    QObject::connect(dialog, &QDialog::finished, qApp, [dialog, answer = std::move(answer)](int r) {
        std::optional<QStringList> paths;
        if (r == QDialog::Accepted)
            paths = dialog->selectedFiles();
        // Not from within the dialog: the answer may start an operation that serves events, which
        // delete the dialog.
        QMetaObject::invokeMethod(
            qApp, [answer, paths] { answer(paths); }, Qt::QueuedConnection);
    });
    dialog->open();
}

} // namespace

QStringList nameFilters(const QString& filter)
{
    QStringList filters;
    const QStringList parts = filter.split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        // "*.*" means every file, also one without a dot in its name.
        QString patterns = parts.at(i + 1) == u"*.*" ? QStringLiteral("*") : parts.at(i + 1);
        filters.append(parts.at(i) + QStringLiteral(" (") + patterns.replace(u';', u' ') + u')');
    }
    return filters;
}

void FileDialogs::chooseFilesToOpen(const FileQuestion& question, Answer answer)
{
    auto* dialog = new QFileDialog(ownerWindow(), QFileDialog::tr("Open"));
    dialog->setFileMode(QFileDialog::ExistingFiles);
    ask(dialog, question, std::move(answer));
}

void FileDialogs::chooseFileToSave(const FileQuestion& question, Answer answer)
{
    auto* dialog = new QFileDialog(ownerWindow(), QFileDialog::tr("Save As"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    ask(dialog, question, std::move(answer));
}

} // namespace fldc
