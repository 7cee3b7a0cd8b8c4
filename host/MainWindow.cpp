// SPDX-License-Identifier: Apache-2.0
#include "host/MainWindow.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>

#include "framework/Kvglobal.h"
#include "framework/data/CorvexADOQuery.h"
#include "host/ActivityLogForm.h"
#include "host/Agents.h"
#include "host/HelpDlg.h"
#include "host/HostSettings.h"
#include "host/SettingsDlg.h"
#include "host/StartDlg.h"
#include "host/Theme.h"

namespace {

const QString kGeometry = QStringLiteral("window/geometry");
const QString kSplitter = QStringLiteral("window/splitter");
const QString kColours = QStringLiteral("window/colours");
const QString kLayouts = QStringLiteral("layouts/");

// What other modules of the product carry out, for the user who asks for it here.
struct TForeignFeature
{
    uint message;
    const char *name;
};
constexpr TForeignFeature kForeignFeatures[] = {
    {9387, QT_TRANSLATE_NOOP("TfrmMain", "The location group list")},
    {9388, QT_TRANSLATE_NOOP("TfrmMain", "The location group editor")},
    {9413, QT_TRANSLATE_NOOP("TfrmMain", "The export file layout editor")},
};

// Gives the focus back to the control of a screen that had it, or that the screen chose while it was shown.
void FocusInside(QWidget *screen)
{
    QWidget *inside = screen->focusWidget();
    (inside ? inside : screen)->setFocus(Qt::OtherFocusReason);
}

// Versions of dated records that came into force since the database was last open.
void CarryVersions()
{
    try {
        TCorvexADOStoredProc(QStringLiteral("_ipspCarryAllVersions")).kvExecProc(false);
    } catch (const TDbError &error) {
        // A database that can only be read is still worth looking at; the next user who may write carries them.
        if (error.kind != TDbError::Kind::ReadOnly && error.kind != TDbError::Kind::Busy)
            throw;
    }
}

} // namespace

TfrmMain::TfrmMain(std::unique_ptr<TCorvexPackageInterface> package, QString scriptsFolder)
    : package_(std::move(package))
    , scriptsFolder_(std::move(scriptsFolder))
    , splitter_(new QSplitter(this))
    , pnlNavigation(new TNavigationTree(splitter_))
    , stack_(new QStackedWidget(splitter_))
    , tabScreens(new QTabWidget(stack_))
{
    setObjectName(QStringLiteral("frmMain"));
    setCentralWidget(splitter_);

    auto *lblWelcome = new QLabel(tr("Open a screen from the navigation tree on the left.\n\nCtrl+Shift+F goes to its "
                                     "filter, F1 lists the keys."),
                                  stack_);
    lblWelcome->setObjectName(QStringLiteral("lblWelcome"));
    lblWelcome->setAlignment(Qt::AlignCenter);
    lblWelcome->setEnabled(false);
    stack_->addWidget(lblWelcome);
    stack_->addWidget(tabScreens);
    tabScreens->setObjectName(QStringLiteral("tabScreens"));
    tabScreens->setAccessibleName(tr("Open screens"));
    tabScreens->setTabsClosable(true);
    tabScreens->setMovable(true);
    tabScreens->setDocumentMode(true);
    splitter_->setStretchFactor(1, 1);
    splitter_->setChildrenCollapsible(false);
    splitter_->setSizes({310, 990});

    connect(pnlNavigation, &TNavigationTree::Activated, this, &TfrmMain::OpenFromTree);
    connect(tabScreens, &QTabWidget::tabCloseRequested, this, &TfrmMain::CloseScreen);
    // A closed screen leaves with its tab when it is deleted, a little later than it closes.
    connect(tabScreens, &QTabWidget::currentChanged, this, &TfrmMain::UpdateTabs, Qt::QueuedConnection);

    package_->GetObjectClassList();
    BuildMenus();
    BuildStatusBar();
    ReadInstallation();
    UpdateTabs();

    resize(1300, 800);
    restoreGeometry(HostSettings().value(kGeometry).toByteArray());
    splitter_->restoreState(HostSettings().value(kSplitter).toByteArray());
    SetScreenHost(this);
    SetCorvexControl(this);
}

TfrmMain::~TfrmMain()
{
    // Screens talk to their host until they are gone.
    delete tabScreens;
    tabScreens = nullptr;
    SetCorvexControl(nullptr);
    SetScreenHost(nullptr);
}

bool TfrmMain::SendPackageMessage(uint MsgId, qlonglong Param1, qlonglong Param2)
{
    const QScopedValueRollback sending(sending_, MsgId);
    try {
        bool handled = false;
        package_->NonVisiblePkgMessage(MsgId, Param1, Param2, handled);
        return handled;
    } catch (const std::exception &error) {
        ShowException(error);
        return false;
    }
}

bool TfrmMain::CanHandleMessage(uint MsgId) const
{
    return package_->CanHandleMessage(MsgId);
}

QWidget *TfrmMain::CurrentScreen() const
{
    return tabScreens->currentWidget();
}

bool TfrmMain::CloseAllScreens()
{
    while (QWidget *screen = tabScreens->currentWidget()) {
        if (!screen->close())
            return false;
        tabScreens->removeTab(tabScreens->indexOf(screen));
    }
    UpdateTabs();
    return true;
}

void TfrmMain::ShowScreen(QWidget *screen)
{
    if (sending_ != 0)
        openedBy_.insert(screen, sending_);
    const QIcon icon =
        screen->testAttribute(Qt::WA_SetWindowIcon) ? screen->windowIcon() : ScreenIcon(QStringLiteral("screen"));
    // An ampersand in a title is no access key here.
    const auto title = [](QString text) { return text.replace(QLatin1Char('&'), QStringLiteral("&&")); };
    const int index = tabScreens->addTab(screen, icon, title(screen->windowTitle()));
    connect(screen, &QWidget::windowTitleChanged, this, [this, screen, title](const QString &text) {
        tabScreens->setTabText(tabScreens->indexOf(screen), title(text));
    });
    connect(screen, &QObject::destroyed, this, [this](QObject *gone) {
        openedBy_.remove(gone);
        QMetaObject::invokeMethod(this, &TfrmMain::UpdateTabs, Qt::QueuedConnection);
    });
    tabScreens->setCurrentIndex(index);
    UpdateTabs();
    screen->show();
    FocusInside(screen);
}

QVariantMap TfrmMain::LoadLayout(const QString &name)
{
    const QByteArray json = HostSettings().value(kLayouts + name).toString().toUtf8();
    return QJsonDocument::fromJson(json).object().toVariantMap();
}

void TfrmMain::SaveLayout(const QString &name, const QVariantMap &layout)
{
    const QByteArray json = QJsonDocument(QJsonObject::fromVariantMap(layout)).toJson(QJsonDocument::Compact);
    HostSettings().setValue(kLayouts + name, QString::fromUtf8(json));
}

void TfrmMain::ShowHelp(int helpContext, const QString &screenTitle)
{
    ShowHelpWindow(QApplication::activeWindow() ? QApplication::activeWindow() : this, helpContext, screenTitle);
}

bool TfrmMain::event(QEvent *event)
{
    if (event->type() != TControlEvent::EventType())
        return QMainWindow::event(event);
    auto *control = static_cast<TControlEvent *>(event);
    TCorvexMessage message;
    if (!TakeGlobalMessage(control->Handle, message))
        return true;
    if (control->Message == kGlobalNotification)
        DeliverGlobalMessage(message);
    else if (control->Message == kHostRequest)
        control->Result = HandleRequest(message) ? 1 : 0;
    return true;
}

bool TfrmMain::HandleRequest(TCorvexMessage &message)
{
    if (SendPackageMessage(message.Msg, message.WParam, message.LParam))
        return true;
    if (CanHandleMessage(message.Msg)) // it was tried, and what went wrong has been told
        return false;
    QString feature = tr("What was asked for (message %1)").arg(message.Msg);
    for (const TForeignFeature &known : kForeignFeatures) {
        if (known.message == message.Msg)
            feature = tr(known.name);
    }
    InfoMessage(tr("%1 is not part of this application.").arg(feature));
    return false;
}

void TfrmMain::closeEvent(QCloseEvent *event)
{
    if (!CloseAllScreens()) {
        event->ignore();
        return;
    }
    HostSettings().setValue(kGeometry, saveGeometry());
    HostSettings().setValue(kSplitter, splitter_->saveState());
    QMainWindow::closeEvent(event);
}

void TfrmMain::keyPressEvent(QKeyEvent *event)
{
    // Not as an action's shortcut: a screen answers F1 with its own help first.
    if (event->key() == Qt::Key_F1)
        ShowHelp(0, QApplication::applicationDisplayName());
    else
        QMainWindow::keyPressEvent(event);
}

QAction *TfrmMain::AddAction(QMenu *menu, const char *name, const char *icon, const QString &caption,
                             const QList<QKeySequence> &keys, const std::function<void()> &run)
{
    QAction *action = menu->addAction(caption);
    action->setObjectName(QString::fromLatin1(name));
    if (icon)
        action->setIcon(ScreenIcon(QString::fromLatin1(icon)));
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, run);
    return action;
}

void TfrmMain::BuildMenus()
{
    const auto menu = [this](const char *name, const QString &caption) {
        QMenu *made = menuBar()->addMenu(caption);
        made->setObjectName(QString::fromLatin1(name));
        return made;
    };

    QMenu *file = menu("mniFile", tr("&File"));
    AddAction(file, "mniOpenDatabase", "folder", tr("&Open Database…"), {QKeySequence(Qt::CTRL | Qt::Key_O)},
              [this] { ReplaceDatabase(RememberedDatabase().value_or(TDatabaseChoice{})); });
    AddAction(file, "mniNewDatabase", nullptr, tr("&New Database…"), {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N)},
              [this] {
                  TDatabaseChoice proposal;
                  proposal.kind = TDatabaseChoice::Kind::CreateEmpty;
                  ReplaceDatabase(proposal);
              });
    AddAction(file, "mniChangeAgent", "agent", tr("Change &Agent…"), {}, [this] {
        if (AskForAgent(this))
            lblAgent->setText(CurrentAgentName());
    });
    file->addSeparator();
    mniCloseTab = AddAction(file, "mniCloseTab", nullptr, tr("&Close Tab"),
                            {QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::CTRL | Qt::Key_F4)},
                            [this] { CloseScreen(tabScreens->currentIndex()); });
    file->addSeparator();
    AddAction(file, "mniExit", nullptr, tr("E&xit"), {QKeySequence(Qt::CTRL | Qt::Key_Q)}, [this] { close(); });

    QMenu *view = menu("mniView", tr("&View"));
    QAction *navigation =
        AddAction(view, "mniNavigation", nullptr, tr("&Navigation"), {QKeySequence(Qt::Key_F9)}, [] {});
    navigation->setCheckable(true);
    navigation->setChecked(true);
    connect(navigation, &QAction::toggled, pnlNavigation, &QWidget::setVisible);
    AddAction(view, "mniFilterNavigation", "filter", tr("&Filter Navigation"),
              {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F)}, [this, navigation] {
                  navigation->setChecked(true);
                  pnlNavigation->FocusFilter();
              });
    view->addSeparator();
    AddAction(view, "mniActivityLog", "log", tr("&Activity Log"), {}, [this] { OpenActivityLog(); });
    view->addSeparator();
    BuildColoursMenu(view->addMenu(tr("&Colours")));
    view->addSeparator();
    AddAction(view, "mniNextTab", nullptr, tr("Ne&xt Tab"), {QKeySequence(Qt::CTRL | Qt::Key_Tab)},
              [this] { StepTab(1); });
    AddAction(view, "mniPreviousTab", nullptr, tr("&Previous Tab"),
              {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab)},
              [this] { StepTab(-1); });

    QMenu *tools = menu("mniTools", tr("&Tools"));
    for (const TToolEntry &tool : package_->ToolEntries()) {
        const QByteArray name = tool.ObjectName.toLatin1();
        AddAction(tools, name.constData(), nullptr, tool.Caption, {}, tool.Run);
    }
    tools->addSeparator();
    AddAction(tools, "mniSettings", "settings", tr("&Settings…"), {}, [this] {
        TfrmSettings dialog(this);
        if (dialog.exec() == QDialog::Accepted)
            ReadInstallation();
    });

    QMenu *help = menu("mniHelp", tr("&Help"));
    AddAction(help, "mniKeys", nullptr, tr("&Keys"), {},
              [this] { ShowHelp(0, QApplication::applicationDisplayName()); });
    AddAction(help, "mniAbout", "app", tr("&About"), {}, [this] { ShowAbout(); });
}

void TfrmMain::BuildColoursMenu(QMenu *menu)
{
    menu->setObjectName(QStringLiteral("mniColours"));
    auto *group = new QActionGroup(this);
    const TColours now = ColoursFromName(HostSettings().value(kColours).toString());
    const auto add = [&](const char *name, const QString &caption, TColours colours) {
        QAction *action = AddAction(menu, name, nullptr, caption, {}, [colours] {
            HostSettings().setValue(kColours, ColoursName(colours));
            ApplyColours(colours);
        });
        action->setCheckable(true);
        action->setChecked(colours == now);
        group->addAction(action);
    };
    add("mniColoursSystem", tr("As the &System"), TColours::System);
    add("mniColoursLight", tr("&Light"), TColours::Light);
    add("mniColoursDark", tr("&Dark"), TColours::Dark);
}

void TfrmMain::BuildStatusBar()
{
    const auto add = [this](QLabel *&label, const char *name, const QString &what, int stretch) {
        label = new QLabel(this);
        label->setObjectName(QString::fromLatin1(name));
        label->setToolTip(what);
        label->setAccessibleName(what);
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(6, 0, 6, 0);
        if (stretch > 0)
            statusBar()->addWidget(label, stretch);
        else
            statusBar()->addPermanentWidget(label);
    };
    add(lblDatabase, "lblDatabase", tr("Database"), 1);
    add(lblCountry, "lblCountry", tr("Country"), 0);
    add(lblTaxYear, "lblTaxYear", tr("Tax year"), 0);
    add(lblAgent, "lblAgent", tr("Agent"), 0);
}

void TfrmMain::ReadInstallation()
{
    CarryVersions();
    LoadInstallation();
    navigation_ = BuildNavigation(package_->ObjectEntries(), CountryCode,
                                  [this](uint message) { return package_->CanHandleMessage(message); });
    pnlNavigation->SetNodes(navigation_);
    const QString database = MainConnection().Description();
    setWindowTitle(QFileInfo(database).fileName());
    lblDatabase->setText(database);
    lblCountry->setText(CountryName(CountryCode));
    lblTaxYear->setText(tr("Tax year %1").arg(GetEndTaxYear()));
    lblAgent->setText(CurrentAgentName());
}

void TfrmMain::OpenFromTree(uint message)
{
    // The user who picks a list again wants the one that is open; another copy of it can only be asked for by a
    // message.
    for (int i = 0; i < tabScreens->count(); ++i) {
        if (openedBy_.value(tabScreens->widget(i)) == message) {
            tabScreens->setCurrentIndex(i);
            FocusInside(tabScreens->widget(i));
            return;
        }
    }
    SendPackageMessage(message, 0, 0);
}

void TfrmMain::OpenActivityLog()
{
    if (auto *open = tabScreens->findChild<TfrmActivityLog *>()) {
        tabScreens->setCurrentWidget(open);
        return;
    }
    ShowScreen(new TfrmActivityLog);
}

void TfrmMain::CloseScreen(int index)
{
    if (QWidget *screen = tabScreens->widget(index)) {
        if (screen->close())
            tabScreens->removeTab(tabScreens->indexOf(screen));
    }
    UpdateTabs();
}

void TfrmMain::StepTab(int by)
{
    const int count = tabScreens->count();
    if (count == 0)
        return;
    tabScreens->setCurrentIndex((tabScreens->currentIndex() + by + count) % count);
    FocusInside(tabScreens->currentWidget());
}

void TfrmMain::UpdateTabs()
{
    if (!tabScreens)
        return;
    const bool any = tabScreens->count() > 0;
    stack_->setCurrentIndex(any ? 1 : 0);
    mniCloseTab->setEnabled(any);
}

void TfrmMain::ReplaceDatabase(TDatabaseChoice proposal)
{
    auto connection = AskForDatabase(this, proposal, scriptsFolder_);
    if (!connection || !CloseAllScreens())
        return;
    // The closed screens delete themselves when control is back in the event loop; what they hold of the old connection
    // goes with them.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    SetMainConnection(std::move(connection));
    RememberDatabase(proposal);
    ReadInstallation();
    ChooseAgent({});
    lblAgent->setText(CurrentAgentName());
}

void TfrmMain::ShowAbout()
{
    InfoMessage(tr("%1\nVersion %2\n\nMaintenance of the reference data of a payroll.\nDatabase: %3\nQt %4")
                    .arg(QApplication::applicationDisplayName(), QApplication::applicationVersion(),
                         MainConnection().Description(), QString::fromLatin1(qVersion())));
}
