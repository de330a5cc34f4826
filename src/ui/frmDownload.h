#pragma once

#include "ui/ControlPositions.h"
#include "ui/desktop/Placement.h"
#include "ui/logic/DownloadWindow.h"

#include <QPointer>
#include <QScreen>
#include <QWidget>

#include <functional>
#include <memory>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

namespace fldc {

class ButtonOperations;
class ChoiceBox;
class ConfigurationView;
class IDesktopSession;
class IFileDialogs;
class IHelpViewer;
class NoticeStrip;
class SessionView;
class StatusBar;
class TransferBar;

/// The main window: shows the state of a DownloadWindow and hands what the user does to it and to
/// the operations of the buttons. Holds no state of its own but the look of the columns.
///
/// It may be let go of in the middle of an event that it handles (the user closes it, a client
/// unloads it during an operation); it then goes when that event is done.
class frmDownload final : public QWidget, public IWindowView {
    Q_OBJECT

public:
    /// Makes main windows; the arguments must outlive them. @p desktop: null for none.
    [[nodiscard]] static DownloadWindow::ViewFactory factory(const Platform& platform,
                                                             IFileDialogs& dialogs,
                                                             IHelpViewer& helpViewer,
                                                             IDesktopSession* desktop = nullptr);

    frmDownload(DownloadWindow& window, const Platform& platform, IFileDialogs& dialogs,
                IHelpViewer& helpViewer, IDesktopSession* desktop);
    ~frmDownload() override;

    // -- IWindowView
    void showView() override;
    void hideView() override { hide(); }
    void showFailureReport(const QString& text, std::function<void()> closed) override;
    void showNotice(const QString& text) override;
    void downloadRefused() override;
    void windowChanged(WindowPart part) override;

    /// The desktop's session ends: from now on, for a minute, a close is not refused.
    void onSessionEnds();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    bool event(QEvent* event) override;

private:
    using Operation = void (ButtonOperations::*)();

    void dispose();
    void showPart(WindowPart part);

    // The controls (frmDownload_controls.cpp)
    void makeControls();
    template <class Widget>
    Widget* named(Control control, Widget* widget);
    QLabel* makeLabel(Control control, const QString& text);
    QPushButton* makeButton(Control control, const QString& text, Operation operation);
    ChoiceBox* makeCombo(Control control);
    void makeFrame();
    void makeHelpButton();
    void connectControls();
    void describeControls();
    void setTabOrderOfControls();
    [[nodiscard]] SessionView* makeSessionView(const Platform& platform, IDesktopSession* desktop);

    // Their places (frmDownload_layout.cpp)
    void layOutControls();
    void layOutAccessLevel();
    void layOutFrame();
    void followScreen();
    void keepWithinReach();

    void run(Operation operation);
    void askForHelp();
    void whileHandling(const std::function<void()>& steps);
    void showPorts();
    void showBaudRate();
    void showEnabled();
    void showErasable();
    void placeOnScreen();

    DownloadWindow* m_window; ///< null once the window has let go of this view
    std::shared_ptr<ButtonOperations> m_operations;
    const Platform& m_platform;
    int m_handling = 0; ///< depth of the handlers that call into the window
    bool m_sessionEnds = false;
    bool m_placed = false;
    bool m_frameKnown = false;
    WindowNumber m_number;
    QPointer<QScreen> m_screen;   ///< whose changes are followed
    QWidget* m_focused = nullptr; ///< had the focus when the controls were disabled

    QCheckBox* chkAccessLevel = nullptr;
    ChoiceBox* cboPort = nullptr;
    ChoiceBox* cboBaudRate = nullptr;
    QPushButton* cmdConfig = nullptr;
    QPushButton* cmdErase = nullptr;
    QPushButton* cmdDownload = nullptr;
    QPushButton* cmdHelp = nullptr;
    QWidget* fraConfiguration = nullptr;
    QFrame* m_listBorder = nullptr;
    ConfigurationView* ListView1 = nullptr;
    QPushButton* cmdSaveDetails = nullptr;
    QLineEdit* txtCurrentDownload = nullptr;
    TransferBar* prgDownloadProgress = nullptr;
    StatusBar* stsStatus = nullptr;
    QPushButton* cmdCancel = nullptr;
    NoticeStrip* noticeStrip = nullptr;
    SessionView* m_session = nullptr;
};

} // namespace fldc
