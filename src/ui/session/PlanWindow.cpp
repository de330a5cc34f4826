#include "ui/session/PlanWindow.h"

#include "firmware/colFiles.h"
#include "manager/clsDLManager.h"
#include "ui/logic/DownloadWindow.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;

namespace {

constexpr int planWide = 90; // characters
constexpr int planHigh = 18; // lines
constexpr std::array columnShares{22, 16, 16, 36};

QString summaryText(const std::vector<PlanRow>& rows)
{
    if (rows.empty())
        return PlanWindow::tr("No files are loaded. Choose some to see what they would do to this "
                              "radio; nothing is sent to it.");
    const auto fitting = std::ranges::count(rows, true, &PlanRow::fits);
    return PlanWindow::tr(
               "By the configuration that was read last, %1 would be written and %2 fit nothing.")
        .arg(fitting)
        .arg(std::ssize(rows) - fitting);
}

} // namespace

PlanWindow::PlanWindow(IFileService& files, QWidget* owner)
    : QDialog(owner), m_files(files), m_summary(new QLabel(this)), m_list(new QTreeWidget(this)),
      m_remarks(new QLabel(this)), m_choose(new QPushButton(tr("Choose &Files..."), this)),
      m_download(new QPushButton(tr("&Download These"), this))
{
    setObjectName(QStringLiteral("planWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    setWindowTitle(tr("What Will Be Written"));
    setFont(owner->font());
    for (QLabel* label : {m_summary, m_remarks}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    m_list->setHeaderLabels({tr("File"), tr("New"), tr("In the Radio"), tr("Component")});
    m_list->setRootIsDecorated(false);
    m_list->setAllColumnsShowFocus(true);
    m_remarks->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* close = new QPushButton(tr("C&lose"), this);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {m_choose, m_download, close}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->insertStretch(1);
    connect(m_choose, &QPushButton::clicked, this, &PlanWindow::chooseWanted);
    connect(m_download, &QPushButton::clicked, this, [this] { Q_EMIT downloadWanted(m_paths); });
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(&m_scanning, &QTimer::timeout, this, &PlanWindow::showRemarks);

    auto* whole = new QVBoxLayout(this);
    whole->addWidget(m_summary);
    whole->addWidget(m_list, 1);
    whole->addWidget(m_remarks);
    whole->addLayout(buttons);
    const int width = fontMetrics().averageCharWidth();
    resize(width * planWide, fontMetrics().lineSpacing() * planHigh);
    for (int column = 0; column < m_list->columnCount() - 1; ++column)
        m_list->setColumnWidth(column, width * columnShares.at(static_cast<std::size_t>(column)));
}

void PlanWindow::refresh(const DownloadWindow& window, const QStringList& refused)
{
    const clsDLManager* manager = window.downLoadManager();
    const auto files = manager == nullptr ? nullptr : manager->loadedFiles();
    const auto rows = files ? planOf(*files, window.configurations()) : std::vector<PlanRow>();
    m_refused = refused;
    m_summary->setText(summaryText(rows));
    fillRows(rows);
    QStringList paths;
    for (const PlanRow& row : rows) {
        if (!paths.contains(row.path))
            paths.append(row.path);
    }
    m_choose->setEnabled(window.controlsEnabled());
    // Of a list with a refused file nothing is written.
    m_download->setEnabled(window.controlsEnabled() && !paths.isEmpty() && refused.isEmpty());
    if (m_scan && paths == m_paths)
        return showRemarks();
    m_paths = paths;
    m_scan.emplace(m_files, paths);
    m_scanning.start(0ms);
    showRemarks();
}

void PlanWindow::fillRows(const std::vector<PlanRow>& rows)
{
    m_list->clear();
    const QIcon warning = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
    for (const PlanRow& row : rows) {
        auto* item = new QTreeWidgetItem({row.file, row.newVersion, row.oldVersion, row.component});
        item->setToolTip(0, row.path);
        if (!row.fits)
            item->setIcon(3, warning);
        m_list->addTopLevelItem(item);
    }
}

void PlanWindow::showRemarks()
{
    const bool more = m_scan && m_scan->step();
    if (!more)
        m_scanning.stop();
    QStringList remarks;
    for (const QString& refused : std::as_const(m_refused))
        remarks.append(tr("Refused: ") + refused);
    if (m_scan)
        remarks += m_scan->faults();
    if (more)
        remarks.append(tr("Looking for wrong checksums..."));
    else if (remarks.isEmpty() && !m_paths.isEmpty())
        remarks.append(tr("No record has a wrong checksum."));
    if (remarks.join(u'\n') != m_remarks->text())
        m_remarks->setText(remarks.join(u'\n'));
}

} // namespace fldc
