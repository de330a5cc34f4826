#pragma once

#include "ui/logic/session/WritePlan.h"

#include <QDialog>
#include <QTimer>

#include <memory>
#include <optional>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace fldc {

class DownloadWindow;
class IFileService;

/// What a download of the loaded files would write, in a window beside the main window that blocks
/// nothing. Nobody waits for it, and it starts nothing by itself.
class PlanWindow final : public QDialog {
    Q_OBJECT

public:
    /// @p files must outlive the window.
    PlanWindow(IFileService& files, QWidget* owner);

    /// Shows what @p window and its manager have now. @p refused: files that were not read, with
    /// the reasons.
    void refresh(const DownloadWindow& window, const QStringList& refused);

Q_SIGNALS:
    void chooseWanted();
    /// Write the files that are shown.
    void downloadWanted(const QStringList& paths);

private:
    void fillRows(const std::vector<PlanRow>& rows);
    void showRemarks();

    IFileService& m_files;
    QLabel* m_summary;
    QTreeWidget* m_list;
    QLabel* m_remarks;
    QPushButton* m_choose;
    QPushButton* m_download;
    QStringList m_paths;
    QStringList m_refused;
    std::optional<ChecksumScan> m_scan;
    QTimer m_scanning;
};

} // namespace fldc
