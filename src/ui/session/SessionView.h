#pragma once

#include "ui/logic/session/RunNotes.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

class QDialog;
class QMessageBox;
class QPushButton;
class QWidget;

namespace fldc {

class DownloadWindow;
class IDesktopSession;
class NoticeStrip;
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
        const Platform& platform;
        IDesktopSession* desktop; ///< null: none
    };
    /// @p window: that of @p surroundings' view. The object belongs to the view.
    SessionView(DownloadWindow& window, const Surroundings& surroundings);

    /// The window has let go of its view.
    void detach();
    /// The window shows another progress.
    void showProgress();
    /// The window was asked to close and must not.
    void sayWhyOpen();

private:
    void runChanged();
    void runEnded();
    void askForCancel();
    void cancelRun();
    void tellAway();
    void showDetails();
    void copy();
    [[nodiscard]] QString portDescription() const;
    [[nodiscard]] QMessageBox* makeBox(const QString& name, const QString& title,
                                       const QString& text);

    DownloadWindow* m_window;
    Surroundings m_around;
    RunNotes m_notes;
    QTimer m_seconds;
    bool m_cancelling = false;
    QPointer<QMessageBox> m_question;
    QPointer<QMessageBox> m_refusal;
    QPointer<QDialog> m_details;
};

} // namespace fldc
