// SPDX-License-Identifier: Apache-2.0
#include "host/HelpDlg.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

struct TKeyHelp
{
    const char *keys;
    const char *does;
};

constexpr TKeyHelp kKeys[] = {
    {"Ins", QT_TRANSLATE_NOOP("Help", "Add a record")},
    {"Enter", QT_TRANSLATE_NOOP("Help", "Edit the focused record; open the entry of the navigation tree")},
    {"Del", QT_TRANSLATE_NOOP("Help", "Delete the focused record")},
    {"Ctrl+D", QT_TRANSLATE_NOOP("Help", "Add a copy of the focused record")},
    {"Ctrl+N", QT_TRANSLATE_NOOP("Help", "Notes of the focused record")},
    {"Ctrl+C", QT_TRANSLATE_NOOP("Help", "Copy the selected rows to the clipboard")},
    {"Ctrl+F", QT_TRANSLATE_NOOP("Help", "Search or filter the list")},
    {"F3, Shift+F3", QT_TRANSLATE_NOOP("Help", "Next match, previous match")},
    {"F5", QT_TRANSLATE_NOOP("Help", "Read the list again")},
    {"Ctrl+Shift+F", QT_TRANSLATE_NOOP("Help", "Filter the navigation tree")},
    {"Ctrl+W, Ctrl+F4", QT_TRANSLATE_NOOP("Help", "Close the tab")},
    {"Ctrl+Tab, Ctrl+Shift+Tab", QT_TRANSLATE_NOOP("Help", "Next tab, previous tab")},
    {"Ctrl+O, Ctrl+Shift+N", QT_TRANSLATE_NOOP("Help", "Open a database, create a new one")},
    {"Esc", QT_TRANSLATE_NOOP("Help", "Leave a dialog without saving; clear a search or filter")},
    {"Ctrl+Enter", QT_TRANSLATE_NOOP("Help", "Save a note")},
    {"F1", QT_TRANSLATE_NOOP("Help", "This window")},
};

} // namespace

void ShowHelpWindow(QWidget *parent, int helpContext, const QString &title)
{
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("frmHelp"));
    dialog.setWindowTitle(QDialog::tr("Help"));

    auto *lblTitle = new QLabel(title, &dialog);
    lblTitle->setObjectName(QStringLiteral("lblTitle"));
    lblTitle->setTextFormat(Qt::PlainText);
    QFont heading = lblTitle->font();
    heading.setBold(true);
    heading.setPointSizeF(heading.pointSizeF() * 1.3);
    lblTitle->setFont(heading);
    auto *lblContext = new QLabel(QDialog::tr("Help context %1").arg(helpContext), &dialog);
    lblContext->setObjectName(QStringLiteral("lblHelpContext"));
    lblContext->setVisible(helpContext != 0);

    auto *grdKeys = new QTableWidget(int(std::size(kKeys)), 2, &dialog);
    grdKeys->setObjectName(QStringLiteral("grdKeys"));
    grdKeys->setAccessibleName(QDialog::tr("Keys"));
    grdKeys->setHorizontalHeaderLabels({QDialog::tr("Key"), QDialog::tr("What it does")});
    grdKeys->verticalHeader()->hide();
    grdKeys->horizontalHeader()->setStretchLastSection(true);
    grdKeys->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdKeys->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdKeys->setShowGrid(false);
    grdKeys->setAlternatingRowColors(true);
    for (int row = 0; row < int(std::size(kKeys)); ++row) {
        grdKeys->setItem(row, 0, new QTableWidgetItem(QString::fromLatin1(kKeys[row].keys)));
        grdKeys->setItem(row, 1, new QTableWidgetItem(QCoreApplication::translate("Help", kKeys[row].does)));
    }
    grdKeys->resizeColumnToContents(0);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, &dialog);
    buttons->button(QDialogButtonBox::Close)->setObjectName(QStringLiteral("btnClose"));
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);

    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(lblTitle);
    layout->addWidget(lblContext);
    layout->addWidget(grdKeys);
    layout->addWidget(buttons);
    dialog.resize(620, 480);
    dialog.exec();
}
