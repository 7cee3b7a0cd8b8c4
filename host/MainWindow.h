// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QMainWindow>

#include <memory>

#include "framework/Corvexpackageintf.h"
#include "framework/Kvutils.h"
#include "framework/Screens.h"
#include "host/DatabaseSetup.h"
#include "host/NavigationTree.h"

class QLabel;
class QMenu;
class QSplitter;
class QStackedWidget;
class QTabWidget;

// The main window: navigation tree, tabs of screens, menus. It is the control window that packages post and send their
// messages to, and the host that screens live in.
class TfrmMain final : public QMainWindow, public TScreenHost
{
    Q_OBJECT
public:
    // `package` is owned by the window. A main connection must be open and an agent chosen.
    TfrmMain(std::unique_ptr<TCorvexPackageInterface> package, QString scriptsFolder);
    ~TfrmMain() override;

    // Sends a message to the packages, each time anew. True when one of them handled it; an error is shown and gives
    // false.
    Q_INVOKABLE bool SendPackageMessage(uint MsgId, qlonglong Param1, qlonglong Param2);
    // Whether a package would open something for this message.
    bool CanHandleMessage(uint MsgId) const;

    const QList<TNavigationNode> &Navigation() const { return navigation_; }
    // The screen in front, nullptr when there is none.
    QWidget *CurrentScreen() const;
    // False when a screen refused to close.
    bool CloseAllScreens();
    void OpenActivityLog();

    // TScreenHost
    void ShowScreen(QWidget *screen) override;
    QVariantMap LoadLayout(const QString &name) override;
    void SaveLayout(const QString &name, const QVariantMap &layout) override;
    void ShowHelp(int helpContext, const QString &screenTitle) override;

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void BuildMenus();
    QAction *AddAction(QMenu *menu, const char *name, const char *icon, const QString &caption,
                       const QList<QKeySequence> &keys, const std::function<void()> &run);
    void BuildColoursMenu(QMenu *menu);
    void BuildStatusBar();
    void ReadInstallation();
    void OpenFromTree(uint message);
    void CloseScreen(int index);
    void StepTab(int by);
    void UpdateTabs();
    void ReplaceDatabase(TDatabaseChoice proposal);
    bool HandleRequest(TCorvexMessage &message);
    void ShowAbout();

    std::unique_ptr<TCorvexPackageInterface> package_;
    const QString scriptsFolder_;
    QList<TNavigationNode> navigation_;
    uint sending_ = 0;                      // the message whose screen is being opened
    QHash<const QObject *, uint> openedBy_; // screens, and the message that opened them

    QSplitter *splitter_;
    TNavigationTree *pnlNavigation;
    QStackedWidget *stack_;
    QTabWidget *tabScreens;
    QLabel *lblDatabase = nullptr;
    QLabel *lblCountry = nullptr;
    QLabel *lblTaxYear = nullptr;
    QLabel *lblAgent = nullptr;
    QAction *mniCloseTab = nullptr;
};
