// SPDX-License-Identifier: Apache-2.0
#include "host/NavigationTree.h"

#include <QHash>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "framework/Screens.h"

namespace {

constexpr int kMessageRole = Qt::UserRole;

struct TClassMessage
{
    const char *className;
    uint message;
    bool list; // opens a list screen; a parameter dialog otherwise
};

constexpr TClassMessage kClassMessages[] = {
    {"TfrmIPBankMaintenance", 9225, true},
    {"TfrmMedicareScalesMaint", 9228, true},
    {"TfrmIPPayrollTaxMaintenance", 9231, true},
    {"TfrmIPDenominations", 9234, true},
    {"TfrmIPSFSSScalesMaintenance", 9237, true},
    {"TfrmIPEFTMaintenance", 9240, true},
    {"TfrmIPTaxScalesMaintenance", 9243, true},
    {"TfrmIPContractHoursMaintenance", 9249, true},
    {"TfrmIPHECSScalesMaintenance", 9252, true},
    {"TfrmIPTaxParametersDlg", 9255, false},
    {"TfrmIPTaxParametersNZDlg", 9255, false},
    {"TfrmIPTaxParametersOtherDlg", 9255, false},
    {"TfrmIPPayerGroupsMaintenance", 9256, true},
    {"TfrmIPSuperFundMaintenance", 9262, true},
    {"TfrmIPSuperFileLayoutMaintenance", 9265, true},
    {"TfrmIPRDOMaintenance", 9277, true},
    {"TfrmIPGeneralParametersDlg", 9280, false},
    {"TfrmIPAnnualLeaveMaintenance", 9281, true},
    {"TfrmIPRateFactorsMaintenance", 9284, true},
    {"TfrmIPPayComponentsMaintenance", 9287, true},
    {"TfrmIPLeaveLoadingMaintenance", 9290, true},
    {"TfrmIPAddDeductMaintenance", 9293, true},
    {"TfrmIPSuperSchemeMaintenance", 9296, true},
    {"TfrmIPPayClassMaintenance", 9299, true},
    {"TfrmIPSickLeaveMaintenance", 9308, true},
    {"TfrmIPLSLMaintenance", 9311, true},
    {"TfrmIPLeaveReasonsMaintenance", 9314, true},
    {"TfrmIPCostAccMaintenance", 9320, true},
    {"TfrmIPWorkmansCompMaintenance", 9334, true},
    {"TfrmIPSuperCategoryMaintenance", 9337, true},
    {"TfrmIPAllowDeductMaintenance", 9348, true},
    {"TfrmIPSigDatesMaint", 9379, true},
    {"TfrmIPCreditorMaintenance", 9390, true},
    {"TfrmIPCalendarLeaveMaintenance", 9395, true},
    {"TfrmIPWorkPlanMaintenance", 9404, true},
    {"TfrmIPRateTypeMaintenance", 9409, true},
    {"TfrmIPExportLayoutMaintenance", 9412, true},
    {"TfrmIPLeaveParametersDlg", 9415, false},
    {"TfrmIPUserDefinedLvMaintenance", 9418, true},
    {"TfrmPayFrequencyMaintenance", 9429, true},
    {"TfrmIPCompanyGroupMaintenance", 9440, true},
    {"TfrmIPWorkPatternMaintenance", 9443, true},
    {"TfrmSTP2OtherAllowanceDescMaint", 9453, true},
};

constexpr uint kTaxParameters = 9255;
constexpr uint kSelectAddsDeds = 9436; // a list too, but only as a selection that another screen asks for
constexpr uint kNewSuperFund = 9437;

// Every folder is registered under the same caption, so the key says what a folder is called.
struct TKeyCaption
{
    const char *key;
    const char *caption;
    const char *icon;
};

constexpr TKeyCaption kKeyCaptions[] = {
    {"MAINT", "Maintenance", "folder"},
    {"MAINT_GENERAL", "General", "folder"},
    {"MAINT_GENERAL_BANKS", "Banks", "bank"},
    {"MAINT_EMPLOYMENT", "Employment", "work"},
    {"MAINT_LEAVE", "Leave", "leave"},
    {"MAINT_LEAVE_LEAVEPLAN", "Leave Planning", "leave"},
    {"MAINT_RATES", "Rates", "rates"},
    {"MAINT_SUPER", "Superannuation", "super"},
    {"MAINT_TAX", "Tax", "tax"},
    {"MAINT_PAYROLLTAX", "Payroll Tax", "tax"},
    {"ALERT", "Alerts", "alert"},
};

// "LEAVEPLAN" → "Leaveplan", for a key that the table does not know.
QString WordOfKey(const QString &key)
{
    const QString word = key.section(QLatin1Char('_'), -1).toLower();
    return word.left(1).toUpper() + word.mid(1);
}

QString FolderCaption(const QString &key)
{
    for (const TKeyCaption &known : kKeyCaptions) {
        if (key == QLatin1String(known.key))
            return QString::fromLatin1(known.caption);
    }
    return WordOfKey(key);
}

QString FolderIconName(const QString &key)
{
    for (const TKeyCaption &known : kKeyCaptions) {
        if (key == QLatin1String(known.key))
            return QString::fromLatin1(known.icon);
    }
    return QStringLiteral("folder");
}

// The icon, and in the colour of the text while its entry is selected: the icons' own blue would drown in the
// selection's.
QIcon TreeIcon(const QString &name, const QColor &selected)
{
    const QIcon source = ScreenIcon(name);
    QIcon icon;
    for (const int size : {16, 24, 32}) {
        QPixmap pixmap = source.pixmap(size);
        if (pixmap.isNull())
            continue;
        icon.addPixmap(pixmap);
        QPainter painter(&pixmap);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), selected);
        painter.end();
        icon.addPixmap(pixmap, QIcon::Selected);
    }
    return icon;
}

bool IsFolder(const TObjectEntry &entry)
{
    return entry.ObjectKinds & ObjectKind(8);
}

bool IsShown(const TObjectEntry &entry, quint8 country)
{
    if (entry.ObjectKinds & ObjectKind(3))
        return false;
    const QString className = entry.ObjectClass ? QString::fromLatin1(entry.ObjectClass->name) : QString();
    if (MessageOfClass(className) != kTaxParameters)
        return true;
    switch (country) {
    case kAustralia:
        return className == QLatin1String("TfrmIPTaxParametersDlg");
    case kNewZealand:
        return className == QLatin1String("TfrmIPTaxParametersNZDlg");
    case kOtherCountry:
        return className == QLatin1String("TfrmIPTaxParametersOtherDlg");
    default:
        return false;
    }
}

// The longest folder key that is `key` itself or stands before it; "" when there is none.
QString FolderAbove(QString key, const QStringList &folders)
{
    while (!key.isEmpty() && !folders.contains(key))
        key = key.contains(QLatin1Char('_')) ? key.section(QLatin1Char('_'), 0, -2) : QString();
    return key;
}

// The flat material of the tree: a folder's children are looked up by its key.
struct TParts
{
    QHash<QString, QList<TNavigationNode>> folders;
    QHash<QString, QList<TNavigationNode>> screens;

    QList<TNavigationNode> Under(const QString &key) const
    {
        QList<TNavigationNode> nodes;
        for (TNavigationNode folder : folders.value(key)) {
            folder.children = Under(folder.key);
            nodes.append(folder);
        }
        return nodes + screens.value(key);
    }
};

// One class registered under several groups is told apart by the last word of its group.
void TellApart(QList<TNavigationNode> &screens)
{
    QHash<QString, int> count;
    for (const TNavigationNode &node : screens)
        ++count[node.caption];
    for (TNavigationNode &node : screens) {
        if (count.value(node.caption) > 1)
            node.caption = QStringLiteral("%1 (%2)").arg(node.caption, WordOfKey(node.key));
    }
}

} // namespace

uint MessageOfClass(const QString &className)
{
    for (const TClassMessage &row : kClassMessages) {
        if (className == QLatin1String(row.className))
            return row.message;
    }
    return 0;
}

bool SecondParameterIsList(uint message)
{
    return message == kSelectAddsDeds ||
           std::any_of(std::begin(kClassMessages), std::end(kClassMessages),
                       [message](const TClassMessage &row) { return row.list && row.message == message; });
}

bool FirstParameterIsObject(uint message)
{
    return message == kNewSuperFund;
}

QList<TNavigationNode> BuildNavigation(const QList<TObjectEntry> &entries, quint8 country,
                                       const std::function<bool(uint)> &canOpen)
{
    QStringList folderKeys;
    for (const TObjectEntry &entry : entries) {
        if (IsFolder(entry) && !folderKeys.contains(entry.GroupKey))
            folderKeys.append(entry.GroupKey);
    }
    TParts parts;
    QList<TNavigationNode> loose; // folders that no package registered, one for each first word of a key
    for (const TObjectEntry &entry : entries) {
        if (!IsShown(entry, country))
            continue;
        TNavigationNode node;
        node.name = entry.ObjectName;
        node.key = entry.GroupKey;
        node.className = entry.ObjectClass ? QString::fromLatin1(entry.ObjectClass->name) : QString();
        node.folder = IsFolder(entry);
        if (node.folder) {
            node.caption = FolderCaption(node.key);
            node.available = true;
            const QString above = node.key.contains(QLatin1Char('_'))
                                      ? FolderAbove(node.key.section(QLatin1Char('_'), 0, -2), folderKeys)
                                      : QString();
            parts.folders[above].append(node);
            continue;
        }
        node.caption = entry.Caption;
        node.message = MessageOfClass(node.className);
        node.available = node.message != 0 && canOpen(node.message);
        QString above = FolderAbove(node.key, folderKeys);
        if (above.isEmpty()) {
            above = node.key.section(QLatin1Char('_'), 0, 0);
            const bool made = std::any_of(loose.cbegin(), loose.cend(),
                                          [&above](const TNavigationNode &folder) { return folder.key == above; });
            if (!made)
                loose.append({above, above, FolderCaption(above), {}, true, 0, true, {}});
        }
        parts.screens[above].append(node);
    }
    for (QList<TNavigationNode> &screens : parts.screens)
        TellApart(screens);
    parts.folders[QString()] += loose;
    return parts.Under({});
}

TNavigationTree::TNavigationTree(QWidget *parent)
    : QWidget(parent)
    , edtNavigationFilter(new QLineEdit(this))
    , trvNavigation(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("pnlNavigation"));
    edtNavigationFilter->setObjectName(QStringLiteral("edtNavigationFilter"));
    edtNavigationFilter->setPlaceholderText(tr("Filter"));
    edtNavigationFilter->setAccessibleName(tr("Filter the navigation tree"));
    edtNavigationFilter->setClearButtonEnabled(true);
    edtNavigationFilter->addAction(ScreenIcon(QStringLiteral("filter")), QLineEdit::LeadingPosition);
    edtNavigationFilter->installEventFilter(this);

    trvNavigation->setObjectName(QStringLiteral("trvNavigation"));
    trvNavigation->setAccessibleName(tr("Navigation"));
    trvNavigation->setHeaderHidden(true);
    trvNavigation->setUniformRowHeights(true);
    trvNavigation->setExpandsOnDoubleClick(false);
    trvNavigation->setIndentation(16);
    trvNavigation->header()->setStretchLastSection(true);
    trvNavigation->installEventFilter(this);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 0, 4);
    layout->addWidget(edtNavigationFilter);
    layout->addWidget(trvNavigation);

    connect(edtNavigationFilter, &QLineEdit::textChanged, this, &TNavigationTree::ApplyFilter);
    connect(trvNavigation, &QTreeWidget::itemDoubleClicked, this, &TNavigationTree::OpenItem);
}

void TNavigationTree::SetNodes(const QList<TNavigationNode> &nodes)
{
    trvNavigation->clear();
    AddNodes(trvNavigation->invisibleRootItem(), nodes);
    trvNavigation->expandAll();
    if (QTreeWidgetItem *first = trvNavigation->topLevelItem(0))
        trvNavigation->setCurrentItem(first);
    ApplyFilter(edtNavigationFilter->text());
}

void TNavigationTree::FocusFilter()
{
    edtNavigationFilter->setFocus(Qt::ShortcutFocusReason);
    edtNavigationFilter->selectAll();
}

void TNavigationTree::AddNodes(QTreeWidgetItem *parent, const QList<TNavigationNode> &nodes)
{
    for (const TNavigationNode &node : nodes) {
        auto *item = new QTreeWidgetItem(parent, {node.caption});
        item->setIcon(0, TreeIcon(node.folder ? FolderIconName(node.key) : QStringLiteral("screen"),
                                  palette().color(QPalette::HighlightedText)));
        item->setData(0, kMessageRole, node.message);
        item->setToolTip(0, node.available ? node.caption : tr("Not available in this build"));
        item->setDisabled(!node.available);
        AddNodes(item, node.children);
    }
}

void TNavigationTree::ApplyFilter(const QString &text)
{
    // A folder that fits shows all it holds; a screen that fits keeps the folders above it.
    const std::function<bool(QTreeWidgetItem *, bool)> apply = [&](QTreeWidgetItem *item, bool above) {
        const bool fits = above || item->text(0).contains(text, Qt::CaseInsensitive);
        bool any = fits;
        for (int i = 0; i < item->childCount(); ++i)
            any = apply(item->child(i), fits) || any;
        item->setHidden(!any);
        return any;
    };
    for (int i = 0; i < trvNavigation->topLevelItemCount(); ++i)
        apply(trvNavigation->topLevelItem(i), text.isEmpty());
    if (text.isEmpty())
        return;
    trvNavigation->expandAll();
    // Enter in the tree should open what was looked for: stand on the first screen that is left.
    for (QTreeWidgetItemIterator it(trvNavigation, QTreeWidgetItemIterator::NotHidden |
                                                       QTreeWidgetItemIterator::NoChildren |
                                                       QTreeWidgetItemIterator::Enabled);
         *it; ++it) {
        if ((*it)->text(0).contains(text, Qt::CaseInsensitive)) {
            trvNavigation->setCurrentItem(*it);
            return;
        }
    }
}

void TNavigationTree::OpenItem(QTreeWidgetItem *item)
{
    if (!item || item->isDisabled())
        return;
    if (const uint message = item->data(0, kMessageRole).toUInt())
        Q_EMIT Activated(message);
    else
        item->setExpanded(!item->isExpanded());
}

bool TNavigationTree::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == edtNavigationFilter && key == Qt::Key_Escape) {
        edtNavigationFilter->clear();
        return true;
    }
    if (watched == edtNavigationFilter && (key == Qt::Key_Down || enter)) {
        trvNavigation->setFocus(Qt::OtherFocusReason);
        if (enter)
            OpenItem(trvNavigation->currentItem());
        return true;
    }
    if (watched == trvNavigation && enter) {
        OpenItem(trvNavigation->currentItem());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
