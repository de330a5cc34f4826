#include "platform/qt/display/FileDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>

#include <utility>

namespace fldc {

namespace {

const auto dialogName = QStringLiteral("cdgFileToDownload");

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

/// Asks for a file name and takes none in a folder that does not exist.
class SaveDialog final : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    void accept() override
    {
        const QString folder = QFileInfo(selectedFiles().value(0)).path();
        if (QFileInfo(folder).isDir())
            return QFileDialog::accept();
        auto* box =
            new QMessageBox(QMessageBox::Warning, windowTitle(),
                            tr("The folder %1 does not exist.").arg(folder), QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    }
};

// "csv" for "Comma Separated Variable Files (*.csv)"; none where there are several or all.
QString endingOf(const QString& nameFilter)
{
    static const QRegularExpression single(QStringLiteral(R"(\(\*\.(\w+)\)$)"));
    return single.match(nameFilter).captured(1);
}

QFileDialog* openDialog()
{
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->objectName() == dialogName && each->isVisible())
            return qobject_cast<QFileDialog*>(each);
    }
    return nullptr;
}

void ask(QFileDialog* dialog, const FileQuestion& question, IFileDialogs::Answer answer)
{
    dialog->setObjectName(dialogName);
    // The toolkit's own one: the whole program speaks one language, and it can be checked.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
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
    dialog->setWindowModality(question.modal ? Qt::WindowModal : Qt::NonModal);
    dialog->show();
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
    if (QFileDialog* another = openDialog())
        another->reject();
    auto* dialog = new QFileDialog(ownerWindow(), QFileDialog::tr("Open"));
    dialog->setFileMode(QFileDialog::ExistingFiles);
    ask(dialog, question, std::move(answer));
}

void FileDialogs::chooseFileToSave(const FileQuestion& question, Answer answer)
{
    if (QFileDialog* another = openDialog()) {
        another->raise();
        another->activateWindow();
        return;
    }
    auto* dialog = new SaveDialog(ownerWindow(), QFileDialog::tr("Save As"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    const auto followFilter = [dialog](const QString& nameFilter) {
        dialog->setDefaultSuffix(endingOf(nameFilter));
    };
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog, followFilter);
    ask(dialog, question, std::move(answer));
    followFilter(dialog->selectedNameFilter());
}

} // namespace fldc
