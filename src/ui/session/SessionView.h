#pragma once

#include "ui/logic/DownloadWindow.h"
#include "ui/logic/session/RunNotes.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

class QDialog;
class QMessageBox;
class QPushButton;
class QToolButton;
class QWidget;

namespace fldc {

class IDesktopSession;
class NoticeStrip;
class PlanWindow;
class StatusBar;
class TransferBar;
struct Platform;

/// What the main window says of its manager's operations while they run and when they have ended,
/// and its "Cancel". All of it comes from the session record, blocks nothing and waits for nobody:
/// questions stand beside the conversation with the radio, which goes on meanwhile.
class SessionView final : public QObject {
    Q_OBJECT

public:
    struct Surroundings {
        QWidget& view; ///< the main window's
        TransferBar& bar;
        QPushButton& cancel;
        NoticeStrip& strip;
        StatusBar& status;
        const Platform& platform;
        IDesktopSession* desktop; ///< null: none
        std::function<void()> chooseFiles;
        std::function<void(const QStringList&)> download;
    };
    /// @p window: that of @p surroundings' view. The object belongs to the view.
    SessionView(DownloadWindow& window, Surroundings surroundings);

    /// The window has let go of its view.
    void detach();
    void windowChanged(WindowPart part);
    void downloadRefused() { m_notes.refuse(session::Operation::Download); }
    /// The window was asked to close and must not.
    void sayWhyOpen();

private:
    void showProgress();
    void runChanged();
    void runEnded();
    void askForCancel();
    void cancelRun();
    void tellAway();
    void showDetails();
    void makePlanButton();
    void showPlan();
    void refreshPlan();
    void copy();
    [[nodiscard]] QString portDescription() const;
    [[nodiscard]] QMessageBox* makeBox(const QString& name, const QString& title,
                                       const QString& text);

    DownloadWindow* m_window;
    Surroundings m_around;
    RunNotes m_notes;
    QTimer m_seconds;
    QToolButton* m_planButton = nullptr;
    bool m_cancelling = false;
    QPointer<QMessageBox> m_question;
    QPointer<QMessageBox> m_refusal;
    QPointer<QDialog> m_details;
    QPointer<PlanWindow> m_plan;
};

} // namespace fldc
