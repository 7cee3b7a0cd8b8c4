// SPDX-License-Identifier: Apache-2.0
#include "framework/forms/WhereUsed.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStringList>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "framework/Kvutils.h"
#include "framework/data/Database.h"

namespace {

bool SameSource(const TInUse &a, const TInUse &b)
{
    return qstricmp(a.table, b.table) == 0 && qstrcmp(a.user, b.user) == 0;
}

class TfrmWhereUsed final : public QDialog
{
public:
    TfrmWhereUsed(QWidget *owner, const QString &code, const QList<TUsage> &usages)
        : QDialog(owner)
    {
        setObjectName(QStringLiteral("frmWhereUsed"));
        setWindowTitle(tr("Where Used"));
        auto *layout = new QVBoxLayout(this);
        auto *label = new QLabel(usages.isEmpty() ? tr("Nothing refers to \"%1\".").arg(code)
                                                  : tr("These refer to \"%1\":").arg(code),
                                 this);
        label->setObjectName(QStringLiteral("lblWhereUsed"));
        label->setTextFormat(Qt::PlainText);
        layout->addWidget(label);

        auto *table = new QTableWidget(int(usages.size()), 2, this);
        table->setObjectName(QStringLiteral("grdWhereUsed"));
        table->setAccessibleName(tr("Where Used"));
        table->setHorizontalHeaderLabels({tr("Used by"), tr("Records")});
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        table->setSelectionBehavior(QAbstractItemView::SelectRows);
        table->setSelectionMode(QAbstractItemView::SingleSelection);
        table->setTabKeyNavigation(false);
        table->setAlternatingRowColors(true);
        table->verticalHeader()->hide();
        table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
        table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
        table->horizontalHeaderItem(0)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        table->horizontalHeaderItem(1)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        for (int row = 0; row < usages.size(); ++row) {
            table->setItem(row, 0, new QTableWidgetItem(usages[row].user));
            auto *count = new QTableWidgetItem(QLocale().toString(usages[row].records));
            count->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            table->setItem(row, 1, count);
        }
        layout->addWidget(table);
        label->setBuddy(table);

        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
        buttons->button(QDialogButtonBox::Close)->setObjectName(QStringLiteral("btnClose"));
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        layout->addWidget(buttons);
        resize(440, 300);
        if (!usages.isEmpty())
            table->setCurrentCell(0, 0);
        else
            buttons->button(QDialogButtonBox::Close)->setFocus();
    }
};

} // namespace

QList<TUsage> CountUses(std::span<const TInUse> tables, int id)
{
    QList<TUsage> usages;
    for (size_t i = 0; i < tables.size(); ++i) {
        const TInUse &use = tables[i];
        const auto same = [&use](const TInUse &other) { return SameSource(use, other); };
        if (std::any_of(tables.begin(), tables.begin() + qsizetype(i), same))
            continue;
        QStringList columns;
        for (const TInUse &other : tables.subspan(i)) {
            if (same(other))
                columns.append(QString::fromLatin1(other.column) + QStringLiteral(" = :id"));
        }
        const TDbRows rows =
            MainConnection().Select(QStringLiteral("select count(*) as n from %1 where %2")
                                        .arg(QString::fromLatin1(use.table), columns.join(QStringLiteral(" or "))),
                                    {{QStringLiteral("id"), id}});
        // Some users' names carry a blank in front for the messages that they stand in.
        if (const qlonglong records = rows.Value(0, u"n").toLongLong())
            usages.append({QString::fromUtf8(use.user).trimmed(), records});
    }
    return usages;
}

bool AnyUse(std::span<const TInUse> tables, int id)
{
    return std::any_of(tables.begin(), tables.end(), [id](const TInUse &use) {
        return !MainConnection()
                    .Select(QStringLiteral("select top 1 %2 from %1 where %2 = :id order by %2")
                                .arg(QString::fromLatin1(use.table), QString::fromLatin1(use.column)),
                            {{QStringLiteral("id"), id}})
                    .isEmpty();
    });
}

void ShowWhereUsed(QWidget *owner, const QString &code, std::span<const TInUse> tables, int id)
{
    QList<TUsage> usages;
    try {
        TBusyCursor busy;
        usages = CountUses(tables, id);
    } catch (const TDbError &error) {
        ShowException(error);
        return;
    }
    TfrmWhereUsed(owner, code, usages).exec();
}
