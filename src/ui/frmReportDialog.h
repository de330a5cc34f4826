#pragma once

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

namespace fldc {

/// "Download Failures": a long text that can't be edited, over the window that owns it.
class frmReportDialog final : public QDialog {
    Q_OBJECT

public:
    explicit frmReportDialog(QWidget* owner);
    void setReport(const QString& text);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QPlainTextEdit* txtReport;
    QPushButton* cmdOk;
};

} // namespace fldc
