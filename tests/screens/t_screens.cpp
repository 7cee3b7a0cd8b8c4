// SPDX-License-Identifier: Apache-2.0
// What holds for every list and its dialog, asked of each of them: one sheet of facts a screen.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QToolBar>

#include "framework/forms/Vpmaintenancebaseform.h"
#include "tests/support/TestSupport.h"

namespace {

struct TScreenFacts
{
    uint listMessage;
    const char *listForm;
    const char *grid;
    const char *dialogForm;
    const char *table;
    const char *key;
    int helpContext; // of the list
    int functionId;
    const char *userRecords; // criterion for records that a user may change; nullptr: the demonstration data has none
    const char *sharedKeys = ""; // access keys that two captions of the dialog share by their wording
};

constexpr TScreenFacts kScreens[] = {
    {9225, "TfrmIPBankMaintenance", "grdBanks", "TfrmIPBankAddDlg", "_iptblBanks", "idBank", 101600, 1909, "1 = 1"},
    {9228, "TfrmMedicareScalesMaint", "grdMedicareScales", "TfrmMedicareScalesDlg", "_iptblMedicareScales",
     "idMedicareScales", 104300, 1917, "iTaxYear = 2027", "WESD"},
    {9237, "TfrmIPSFSSScalesMaintenance", "grdSFSSScales", "TfrmSFSSScalesDlg", "_iptblSFSSScales", "idSFSSScales",
     104350, 1923, nullptr, "D"},
    {9243, "TfrmIPTaxScalesMaintenance", "grdTaxScales", "TfrmIPTaxScalesAddDlg", "_iptblTaxScales", "idTaxScales",
     104400, 1930, "bUserDefinable = 1 and iTaxYear = 2027", "D"},
    {9252, "TfrmIPHECSScalesMaintenance", "grdHECSScales", "TfrmIPHECSScalesAddDlg", "_iptblHECSScales", "idHECSScales",
     104250, 1913, "iTaxYear = 2027", "D"},
    {9284, "TfrmIPRateFactorsMaintenance", "grdRateFactors", "TfrmIPRateFactorAddDlg", "_iptblRateFactors",
     "idRateFactor", 103600, 1920, "1 = 1"},
    {9409, "TfrmIPRateTypeMaintenance", "grdRateTypes", "TfrmIPRateTypeAddDlg", "_iptblRateTypes_TD", "idRateTypeTD",
     103500, 1921, "cCode = 'SPARE'"},
};

// Every row of every table, for "nothing was written".
QList<QStringList> Everything()
{
    QList<QStringList> all;
    for (const char *table :
         {"_iptblBanks", "_iptblTaxScales", "_iptblTaxBrackets", "_iptblMedicareScales", "_iptblHECSScales",
          "_iptblHECSBrackets", "_iptblSFSSScales", "_iptblSFSSBrackets", "_iptblRateTypes", "_iptblRateTypes_TD",
          "_iptblRateFactors", "_btblNotes", "_btblActivityLog"})
        all += RowsOf(QStringLiteral("select * from %1 order by 1").arg(QLatin1String(table)));
    return all;
}

QChar AccessKey(const QString &text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != QLatin1Char('&'))
            continue;
        if (text[i + 1] != QLatin1Char('&'))
            return text[i + 1].toUpper();
        ++i;
    }
    return {};
}

int UserRecord(const TScreenFacts &facts)
{
    if (!facts.userRecords)
        return 0;
    const QList<QStringList> rows =
        RowsOf(QStringLiteral("select top 1 %1 from %2 where %3 order by %1")
                   .arg(QLatin1String(facts.key), QLatin1String(facts.table), QLatin1String(facts.userRecords)));
    return rows.isEmpty() ? 0 : rows[0][0].toInt();
}

} // namespace

class TestScreens final : public QObject
{
    Q_OBJECT

private:
    static void AddRows()
    {
        QTest::addColumn<int>("screen");
        for (int i = 0; i < int(std::size(kScreens)); ++i)
            QTest::newRow(kScreens[i].listForm) << i;
    }

private Q_SLOTS:
    void init() { FailOnWarnings(); }

    void ListOpens_data() { AddRows(); }
    void ListOpens()
    {
        QFETCH(int, screen);
        const TScreenFacts &facts = kScreens[screen];
        TTemplateDatabase database(TTemplateDatabase::Content::Demo);
        TNotificationRecorder control;
        TMemoryScreenHost host;
        QVERIFY(SendToPackage(facts.listMessage));
        QCOMPARE(host.Screens.size(), 1);
        auto *form = qobject_cast<TfrmMaintenanceBase *>(host.Screens[0].data());
        QVERIFY(form);
        QCOMPARE(form->objectName(), QLatin1String(facts.listForm));
        QCOMPARE(form->SystemFunctionId(), facts.functionId);
        QCOMPARE(form->GetCurrentHelpContext(), facts.helpContext);
        QVERIFY(!form->windowTitle().isEmpty());
        QVERIFY(!FindControl<QLabel>(form, "lblHeader").text().isEmpty());
        QVERIFY(!FindControl<QLabel>(form, "lblSubHeader").text().isEmpty());

        QStringList actions;
        for (const QAction *action : FindControl<QToolBar>(form, "tbMaintenance").actions())
            actions.append(action->isSeparator() ? "|" : action->objectName());
        const QStringList fixed{"mniMaintAdd", "mniMaintEdit", "mniMaintDelete", "|", "mniNotes", "|", "mniSearch",
                                "|",           "mniGridSave"};
        QCOMPARE(actions.mid(0, fixed.size()), fixed);

        TqsGrid &grid = FindControl<TqsGrid>(form, facts.grid);
        QTRY_VERIFY(grid.RecordCount() >= 0);
        QCOMPARE(grid.RecordCount() > 0, facts.userRecords != nullptr);
        QTRY_COMPARE(grid.model()->rowCount(), int(qMin<qlonglong>(grid.RecordCount(), 2000)));
        for (int column = 0; column < grid.model()->columnCount(); ++column)
            QVERIFY(!grid.model()->headerData(column, Qt::Horizontal).toString().isEmpty());

        // The saved layout comes back.
        grid.setColumnWidth(2, 137);
        Trigger(*form, "mniGridSave");
        QVERIFY(host.Layouts.contains(facts.listForm));
        form->close();
        QVERIFY(SendToPackage(facts.listMessage));
        QCOMPARE(FindControl<TqsGrid>(host.Screens.last(), facts.grid).columnWidth(2), 137);
    }

    void DialogIsWellFormed_data() { AddRows(); }
    void DialogIsWellFormed()
    {
        QFETCH(int, screen);
        const TScreenFacts &facts = kScreens[screen];
        TTemplateDatabase database(TTemplateDatabase::Content::Demo);
        for (const int id : {0, UserRecord(facts)}) {
            TUserScript script;
            script.Dialog(facts.dialogForm, [&facts](QDialog &dialog) {
                QMap<QChar, QString> keys;
                QWidget *last = nullptr;
                for (QWidget *widget : dialog.findChildren<QWidget *>()) {
                    if (!widget->isVisible())
                        continue;
                    QString text;
                    if (auto *label = qobject_cast<QLabel *>(widget)) {
                        text = label->buddy() ? label->text() : QString();
                        if (label->buddy())
                            QCOMPARE(label->buddy()->window(), &dialog);
                    } else if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
                        text = button->text();
                    }
                    const QChar key = AccessKey(text);
                    if (key.isNull())
                        continue;
                    QVERIFY2(!keys.contains(key) || QLatin1String(facts.sharedKeys).contains(key),
                             qPrintable(QStringLiteral("%1 and %2 share an access key").arg(keys.value(key), text)));
                    keys.insert(key, text);
                }
                // Tab goes from the top to the bottom of the fields.
                for (QWidget *at = dialog.nextInFocusChain(); at != &dialog; at = at->nextInFocusChain()) {
                    auto *box = qobject_cast<QGroupBox *>(at->parentWidget());
                    if (!box || !at->isVisible() || !(at->focusPolicy() & Qt::TabFocus))
                        continue;
                    if (last && last->parentWidget() == box) {
                        QVERIFY2(at->y() >= last->y() - last->height() / 2,
                                 qPrintable(last->objectName() + " is before " + at->objectName()));
                    }
                    last = at;
                }
                PressCancel(dialog);
            });
            QVERIFY(SendToPackage(facts.listMessage + 1, id, 0));
            VERIFY_SCRIPT(script);
        }
    }

    void CancelWritesNothing_data() { AddRows(); }
    void CancelWritesNothing()
    {
        QFETCH(int, screen);
        const TScreenFacts &facts = kScreens[screen];
        TTemplateDatabase database(TTemplateDatabase::Content::Demo);
        TNotificationRecorder control;
        const QList<QStringList> before = Everything();
        const int id = UserRecord(facts);
        for (const auto &[record, copy] : {std::pair{0, 0}, std::pair{id, 0}, std::pair{id, 1}}) {
            if (copy == 1 && record == 0)
                continue;
            TUserScript script;
            script.Dialog(facts.dialogForm, [](QDialog &dialog) {
                for (QLineEdit *edit : dialog.findChildren<QLineEdit *>()) {
                    if (edit->isVisible() && edit->isEnabled() && !edit->isReadOnly() && edit->inputMask().isEmpty())
                        edit->setText("1");
                }
                for (QCheckBox *box : dialog.findChildren<QCheckBox *>())
                    box->toggle();
                PressCancel(dialog);
            });
            QVERIFY(SendToPackage(facts.listMessage + 1, record, copy));
            VERIFY_SCRIPT(script);
        }
        control.Process();
        QCOMPARE(Everything(), before);
        QVERIFY(control.Notifications.isEmpty());
    }

    // OK on a record that nobody touched is a save that changes nothing, and is told like any other.
    void UntouchedSaveKeepsTheRecord_data() { AddRows(); }
    void UntouchedSaveKeepsTheRecord()
    {
        QFETCH(int, screen);
        const TScreenFacts &facts = kScreens[screen];
        TTemplateDatabase database(TTemplateDatabase::Content::Demo);
        TNotificationRecorder control;
        const int id = UserRecord(facts);
        if (!facts.userRecords)
            QSKIP("no record to save");
        QVERIFY(id != 0);
        const QString select = QStringLiteral("select * from %1 order by %2").arg(facts.table, facts.key);
        const QList<QStringList> before = RowsOf(select);
        TUserScript script;
        script.Dialog(facts.dialogForm, [](QDialog &dialog) { PressOK(dialog); });
        QVERIFY(SendToPackage(facts.listMessage + 1, id, 0));
        VERIFY_SCRIPT(script);
        control.Process();
        QCOMPARE(RowsOf(select), before);
        QCOMPARE(control.TakeLog(), QStringLiteral("%1:%2").arg(facts.listMessage + 2).arg(id));
    }

    void MissingRecordIsTold_data() { AddRows(); }
    void MissingRecordIsTold()
    {
        QFETCH(int, screen);
        const TScreenFacts &facts = kScreens[screen];
        TTemplateDatabase database(TTemplateDatabase::Content::Demo);
        bool thrown = false;
        try {
            SendToPackage(facts.listMessage + 1, 987654, 0);
        } catch (const TDbError &error) {
            thrown = error.message.contains("deleted");
        }
        QVERIFY(thrown);
    }
};

QTEST_MAIN(TestScreens)
#include "t_screens.moc"
