// SPDX-License-Identifier: Apache-2.0
#include "host/ActivityLogForm.h"

#include <QAction>
#include <QDateTime>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QSaveFile>
#include <QToolBar>
#include <QVBoxLayout>

#include <stdexcept>

#include "framework/Screens.h"
#include "framework/grid/qsGrid.h"

namespace {

TListSource LogSource()
{
    TListSource source;
    source.from = QStringLiteral("dbo._btblActivityLog");
    source.key = QStringLiteral("idActivityLog");
    return source;
}

TGridColumn TextColumn(const char *field, const QString &caption, int width)
{
    TGridColumn column;
    column.field = QString::fromLatin1(field);
    column.caption = caption;
    column.width = width;
    return column;
}

} // namespace

TfrmActivityLog::TfrmActivityLog(QWidget *parent)
    : QWidget(parent)
    , grdActivityLog(new TqsGrid(this))
    , edtFilter(new QLineEdit(this))
    , lblRecordCount(new QLabel(this))
{
    setObjectName(QStringLiteral("frmActivityLog"));
    setWindowTitle(tr("Activity Log"));
    setWindowIcon(ScreenIcon(QStringLiteral("log")));
    setAttribute(Qt::WA_DeleteOnClose);

    grdActivityLog->setObjectName(QStringLiteral("grdActivityLog"));
    grdActivityLog->setAccessibleName(tr("Activity log"));
    TGridColumn when = TextColumn("dWhen", tr("When"), 150);
    when.display = [](const QVariant &value) {
        return value.toDateTime().toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
    };
    QList<TGridColumn> columns{when,
                               TextColumn("cAgentName", tr("Agent"), 130),
                               TextColumn("cKind", tr("Kind"), 150),
                               TextColumn("cCode", tr("Code"), 110),
                               TextColumn("cAction", tr("Action"), 90),
                               TextColumn("cText", tr("Text"), 320)};
    grdActivityLog->SetColumns(columns, QStringLiteral("dWhen"), TGridOrder::Descending);
    connect(grdActivityLog, &TqsGrid::QueryFailed, this, [](const QString &message) { ErrorMessage(message); });
    connect(grdActivityLog, &TqsGrid::RecordCountChanged, this, [this](qlonglong count) {
        lblRecordCount->setText(count < 0    ? QString()
                                : count == 1 ? tr("1 entry")
                                             : tr("%1 entries").arg(QLocale().toString(count)));
    });

    auto *toolbar = new QToolBar(this);
    toolbar->setObjectName(QStringLiteral("tbActivityLog"));
    toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolbar->setIconSize({20, 20});
    const auto add = [this, toolbar](const char *name, const char *icon, const QString &caption, QKeySequence keys,
                                     void (TfrmActivityLog::*handler)()) {
        QAction *action = toolbar->addAction(ScreenIcon(QString::fromLatin1(icon)), caption);
        action->setObjectName(QString::fromLatin1(name));
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
        connect(action, &QAction::triggered, this, handler);
    };
    add("mniRefresh", "refresh", tr("&Refresh"), Qt::Key_F5, &TfrmActivityLog::Refresh);
    add("mniExport", "export", tr("E&xport"), {}, &TfrmActivityLog::Export);

    edtFilter->setObjectName(QStringLiteral("edtFilter"));
    edtFilter->setPlaceholderText(tr("Show only entries that hold this text"));
    edtFilter->setAccessibleName(tr("Filter"));
    edtFilter->setClearButtonEnabled(true);
    connect(edtFilter, &QLineEdit::textChanged, this,
            [this](const QString &text) { grdActivityLog->SetTextFilter(text); });
    auto *lblFilter = new QLabel(tr("F&ilter:"), this);
    lblFilter->setBuddy(edtFilter);
    lblRecordCount->setObjectName(QStringLiteral("lblRecordCount"));

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(0, 0, 8, 0);
    bar->addWidget(toolbar);
    bar->addSpacing(12);
    bar->addWidget(lblFilter);
    bar->addWidget(edtFilter, 1);
    bar->addSpacing(12);
    bar->addWidget(lblRecordCount);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 4, 0, 0);
    layout->addLayout(bar);
    layout->addWidget(grdActivityLog, 1);
    setFocusProxy(grdActivityLog);

    if (ScreenHost())
        grdActivityLog->RestoreLayout(ScreenHost()->LoadLayout(objectName()));
    connect(grdActivityLog, &TqsGrid::LayoutChanged, this, [this] {
        if (ScreenHost())
            ScreenHost()->SaveLayout(objectName(), grdActivityLog->SaveLayout());
    });
    grdActivityLog->OpenList(LogSource());
}

void TfrmActivityLog::GlobalMessage(TCorvexMessage &)
{
    stale_ = true;
    if (isVisible())
        Refresh();
}

void TfrmActivityLog::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (stale_)
        Refresh();
}

void TfrmActivityLog::Refresh()
{
    stale_ = false;
    grdActivityLog->ReReadList(LogSource(), false, 0);
}

void TfrmActivityLog::Export()
{
    const QString name = AskSaveFile(tr("Export Activity Log"), QStringLiteral("activity log.csv"),
                                     tr("CSV files (*.csv);;All files (*)"));
    if (name.isEmpty())
        return;
    const TBusyCursor busy;
    QSaveFile file(name);
    if (file.open(QIODevice::WriteOnly)) {
        grdActivityLog->ExportCsv(file);
        if (file.commit())
            return;
    }
    throw std::runtime_error(tr("Cannot write %1: %2").arg(name, file.errorString()).toStdString());
}

void TfrmActivityLog::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F1 && ScreenHost())
        ScreenHost()->ShowHelp(0, windowTitle());
    else
        QWidget::keyPressEvent(event);
}
